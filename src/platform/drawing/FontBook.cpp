#include "platform/drawing/FontBook.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include <array>
#include <hb-ot.h>
#include <hb.h>
#include <string_view>
#include <utility>
#include <vector>

namespace drawing {
namespace {

template <auto Destroy>
struct Destroyer {
  void operator()(auto* object) const { Destroy(object); }
};

using LibraryHandle = std::unique_ptr<FT_LibraryRec_, Destroyer<FT_Done_FreeType>>;
using FaceHandle = std::unique_ptr<FT_FaceRec_, Destroyer<FT_Done_Face>>;
using ShaperHandle = std::unique_ptr<hb_font_t, Destroyer<hb_font_destroy>>;

constexpr std::array<const char*, 3> systemFiles{
    "/usr/share/fonts/opentype/inter/Inter-Regular.otf",
    "/usr/share/fonts/opentype/inter/Inter-Medium.otf",
    "/usr/share/fonts/opentype/inter/Inter-SemiBold.otf"};

}  // namespace

class FontBook::Shelf {
 public:
  struct Font {
    std::string path;
    unsigned index = 0;  // of the face in its file
    FaceHandle face{};
    ShaperHandle shaper{};
    std::optional<bool> hasColorBitmaps{};
  };

  LibraryHandle library;
  std::vector<Font> fonts;
};

FontBook::FontBook() : shelf_(std::make_unique<Shelf>()) {
  for (const char* file : systemFiles) {
    shelf_->fonts.push_back({.path = file});
  }
}

FontBook::~FontBook() = default;

FontId FontBook::system(ui::Weight weight) { return static_cast<FontId>(weight); }

std::optional<FontId> FontBook::fallback(
    char32_t /*character*/, ui::Weight /*weight*/, const std::string& /*language*/) {
  return std::nullopt;
}

FT_FaceRec_* FontBook::face(FontId font) {
  Shelf::Font& known = shelf_->fonts[font];
  if (!known.face) {
    if (!shelf_->library) {
      FT_Library library = nullptr;
      FT_Init_FreeType(&library);
      shelf_->library.reset(library);
    }
    FT_Face face = nullptr;
    FT_New_Face(shelf_->library.get(), known.path.c_str(), known.index, &face);
    known.face.reset(face);
  }
  return known.face.get();
}

hb_font_t* FontBook::shaper(FontId font) {
  Shelf::Font& known = shelf_->fonts[font];
  if (!known.shaper) {
    hb_blob_t* file = hb_blob_create_from_file(known.path.c_str());
    hb_face_t* face = hb_face_create(file, known.index);
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
  Shelf::Font& known = shelf_->fonts[font];
  if (!known.hasColorBitmaps) {
    known.hasColorBitmaps = hb_ot_color_has_png(hb_font_get_face(shaper(font))) != 0;
  }
  return *known.hasColorBitmaps;
}

}  // namespace drawing
