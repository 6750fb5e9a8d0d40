#include "platform/text/FontBook.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include <algorithm>
#include <array>
#include <hb-ot.h>
#include <hb.h>
#include <map>
#include <set>
#include <tuple>
#include <unistd.h>
#include <vector>

namespace quillpad::drawing {
namespace {

template <auto Destroy>
struct Destroyer {
  void operator()(auto* object) const { Destroy(object); }
};

using LibraryHandle = std::unique_ptr<FT_LibraryRec_, Destroyer<FT_Done_FreeType>>;
using FaceHandle = std::unique_ptr<FT_FaceRec_, Destroyer<FT_Done_Face>>;
using ShaperHandle = std::unique_ptr<hb_font_t, Destroyer<hb_font_destroy>>;

// In the order of ui::Weight.
constexpr std::array<const char*, 3> systemFiles{
    "/usr/share/fonts/opentype/inter/Inter-Regular.otf",
    "/usr/share/fonts/opentype/inter/Inter-Medium.otf",
    "/usr/share/fonts/opentype/inter/Inter-SemiBold.otf"};

constexpr std::size_t mostSearches = 4096;

}  // namespace

class FontBook::Shelf {
 public:
  struct Font {
    FontFile file;
    FaceHandle face{};
    ShaperHandle shaper{};
    std::optional<bool> hasColorBitmaps{};
  };

  // The font's place on the shelf, where it is put if it is new.
  FontId place(FontFile file) {
    const auto found = std::ranges::find(fonts, file, &Font::file);
    if (found == fonts.end()) {
      fonts.push_back({.file = std::move(file)});
      return static_cast<FontId>(fonts.size() - 1);
    }
    return static_cast<FontId>(found - fonts.begin());
  }

  // What fallbacks are chosen by, beside the characters.
  using Choice = std::tuple<Script, ui::Weight, std::string>;

  LibraryHandle library;
  std::vector<Font> fonts;
  FontFinder finder;
  std::map<Choice, std::vector<FontId>> fallbacks;
  std::set<std::u32string, std::less<>> withoutFont;  // searched for in vain
};

FontBook::FontBook() : shelf_(std::make_unique<Shelf>()) {
  for (const char* path : systemFiles) {
    shelf_->fonts.push_back({.file = {path}});
  }
}

FontBook::~FontBook() = default;

FontId FontBook::system(ui::Weight weight) { return static_cast<FontId>(weight); }

std::optional<FontId> FontBook::fallback(
    std::u32string_view characters, Script script, ui::Weight weight, const std::string& language) {
  std::vector<FontId>& known = shelf_->fallbacks[{script, weight, language}];
  const auto fits = [&](FontId font) { return covers(font, characters); };
  if (const auto found = std::ranges::find_if(known, fits); found != known.end()) {
    return *found;
  }
  if (shelf_->withoutFont.contains(characters)) {
    return std::nullopt;
  }
  if (auto file = shelf_->finder.find(characters, script, weight, language)) {
    known.push_back(shelf_->place(*std::move(file)));
    return known.back();
  }
  if (shelf_->withoutFont.size() == mostSearches) {
    shelf_->withoutFont.clear();
  }
  shelf_->withoutFont.emplace(characters);
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
  shaper(font);  // settles which file it is
  Shelf::Font& known = shelf_->fonts[font];
  if (!known.face) {
    if (!shelf_->library) {
      FT_Library library = nullptr;
      FT_Init_FreeType(&library);
      shelf_->library.reset(library);
    }
    FT_Face face = nullptr;
    FT_New_Face(shelf_->library.get(), known.file.path.c_str(), known.file.index, &face);
    known.face.reset(face);
  }
  return known.face.get();
}

hb_font_t* FontBook::shaper(FontId font) {
  Shelf::Font& known = shelf_->fonts[font];
  if (!known.shaper) {
    if (font < systemFiles.size() && access(known.file.path.c_str(), R_OK) != 0) {
      const auto weight = static_cast<ui::Weight>(font);
      known.file = shelf_->finder.find(U"a", latinScript, weight, "en").value_or(known.file);
    }
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
  Shelf::Font& known = shelf_->fonts[font];
  if (!known.hasColorBitmaps) {
    known.hasColorBitmaps = hb_ot_color_has_png(face) != 0;
  }
  return *known.hasColorBitmaps;
}

}  // namespace quillpad::drawing
