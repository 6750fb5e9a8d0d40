#include "platform/text/GlyphOutline.h"

#include "platform/text/Freetype.h"

namespace quillpad::drawing {

namespace {

std::string pointText(const FT_Vector* at) {
  return std::to_string(at->x) + " " + std::to_string(at->y);
}

int append(void* path, char command, const std::string& points) {
  *static_cast<std::string*>(path) += command + points;
  return 0;
}

std::string pathData(FT_Outline& outline) {
  FT_Outline_Funcs steps{};
  steps.move_to = [](const FT_Vector* to, void* user) { return append(user, 'M', pointText(to)); };
  steps.line_to = [](const FT_Vector* to, void* user) { return append(user, 'L', pointText(to)); };
  steps.conic_to = [](const FT_Vector* control, const FT_Vector* to, void* user) {
    return append(user, 'Q', pointText(control) + " " + pointText(to));
  };
  steps.cubic_to =
      [](const FT_Vector* first, const FT_Vector* second, const FT_Vector* to, void* user) {
        return append(user, 'C', pointText(first) + " " + pointText(second) + " " + pointText(to));
      };
  std::string path;
  if (FT_Outline_Decompose(&outline, &steps, &path) != 0) {
    return "";
  }
  return path.empty() ? path : path + "Z";
}

}  // namespace

std::string glyphPath(FontBook& fonts, FontId font, std::uint32_t glyph) {
  FT_FaceRec_* face = fonts.face(font);
  if (face == nullptr || FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) != 0 ||
      face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) {
    return "";
  }
  return pathData(face->glyph->outline);
}

}  // namespace quillpad::drawing
