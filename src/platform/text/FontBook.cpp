#include "platform/text/FontBook.h"

#include <algorithm>
#include <array>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/text/Freetype.h"
#include "platform/text/Handle.h"
#include "platform/text/Harfbuzz.h"
#include "platform/text/Unicode.h"

namespace quillpad::drawing {
namespace {

// In the order of ui::Weight.
constexpr std::array<const char*, 3> systemFiles{
    "/usr/share/fonts/opentype/inter/Inter-Regular.otf",
    "/usr/share/fonts/opentype/inter/Inter-Medium.otf",
    "/usr/share/fonts/opentype/inter/Inter-SemiBold.otf"};

}  // namespace

struct FontBook::Impl {
  struct Font {
    FontFile file;
    Handle<FT_FaceRec_, FT_Done_Face> face{};
    Handle<hb_font_t, hb_font_destroy> shaper{};
    std::optional<bool> hasColorBitmaps{};
  };

  // The font's number, a new one if it was not used yet.
  FontId place(FontFile file) {
    const auto found = std::ranges::find(fonts, file, &Font::file);
    if (found == fonts.end()) {
      fonts.push_back({.file = std::move(file)});
      return static_cast<FontId>(fonts.size() - 1);
    }
    return static_cast<FontId>(found - fonts.begin());
  }

  Handle<FT_LibraryRec_, FT_Done_FreeType> library;
  std::vector<Font> fonts;  // the system font's weights first
  FontFinder finder;
};

FontBook::FontBook() : impl_(std::make_unique<Impl>()) {
  for (const auto weight : {ui::Weight::regular, ui::Weight::medium, ui::Weight::semibold}) {
    const char* path = systemFiles.at(static_cast<std::size_t>(weight));
    FontFile file{.path = path};
    if (access(path, R_OK) != 0) {
      file = impl_->finder.find(U"a", USCRIPT_LATIN, weight, "en").value_or(file);
    }
    impl_->fonts.push_back({.file = std::move(file)});
  }
}

FontBook::~FontBook() = default;

FontId FontBook::system(ui::Weight weight) { return static_cast<FontId>(weight); }

bool FontBook::isSystem(FontId font) { return font < systemFiles.size(); }

std::optional<FontId> FontBook::fallback(
    std::u32string_view characters, Script script, ui::Weight weight, const std::string& language) {
  if (auto file = impl_->finder.find(characters, script, weight, language)) {
    return impl_->place(*std::move(file));
  }
  return std::nullopt;
}

bool FontBook::covers(FontId font, std::u32string_view characters) {
  hb_font_t* shaping = shaper(font);
  return std::ranges::all_of(characters, [&](char32_t character) {
    hb_codepoint_t glyph = 0;
    return hb_font_get_nominal_glyph(shaping, character, &glyph) != 0;
  });
}

FT_FaceRec_* FontBook::face(FontId font) {
  Impl::Font& known = impl_->fonts[font];
  if (!known.face) {
    if (!impl_->library) {
      FT_Library library = nullptr;
      FT_Init_FreeType(&library);
      impl_->library.reset(library);
    }
    FT_Face face = nullptr;
    FT_New_Face(impl_->library.get(), known.file.path.c_str(), known.file.index, &face);
    known.face.reset(face);
  }
  return known.face.get();
}

hb_font_t* FontBook::shaper(FontId font) {
  Impl::Font& known = impl_->fonts[font];
  if (!known.shaper) {
    hb_blob_t* file = hb_blob_create_from_file(known.file.path.c_str());
    hb_face_t* face = hb_face_create(file, static_cast<unsigned>(known.file.index));
    known.shaper.reset(hb_font_create(face));
    hb_face_destroy(face);
    hb_blob_destroy(file);
  }
  return known.shaper.get();
}

double FontBook::unitsPerEm(FontId font) {
  return hb_face_get_upem(hb_font_get_face(shaper(font)));
}

bool FontBook::hasColorBitmaps(FontId font) {
  hb_face_t* face = hb_font_get_face(shaper(font));
  Impl::Font& known = impl_->fonts[font];
  if (!known.hasColorBitmaps) {
    known.hasColorBitmaps = hb_ot_color_has_png(face) != 0;
  }
  return *known.hasColorBitmaps;
}

}  // namespace quillpad::drawing
