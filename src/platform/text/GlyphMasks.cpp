#include "platform/text/GlyphMasks.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "platform/text/Freetype.h"

namespace quillpad::drawing {

namespace {

constexpr std::size_t maxBytesKept = std::size_t{4} << 20;

// Sizes in 64ths of a pixel, as FreeType counts.
long sixtyFourths(double size) {
  return std::max(1L, std::lround(std::min(size, maximumGlyphSize) * 64));
}

std::uint64_t keyOf(FontId font, std::uint32_t glyph, long size, GlyphPhase phase) {
  return std::uint64_t{glyph} << 40 | static_cast<std::uint64_t>(size) << 20 |
         std::uint64_t{font} << 4 | static_cast<std::uint64_t>(phase.y * 4 + phase.x);
}

std::uint8_t unmultiplied(int component, int alpha) {
  return static_cast<std::uint8_t>(std::min(255, (component * 255 + alpha / 2) / alpha));
}

Bitmap pictureOf(const FT_Bitmap& bitmap) {
  Bitmap picture{
      .width = static_cast<int>(bitmap.width),
      .height = static_cast<int>(bitmap.rows),
      .pixels = {}};
  picture.pixels.reserve(std::size_t{bitmap.width} * bitmap.rows);
  for (unsigned y = 0; y < bitmap.rows; ++y) {
    const unsigned char* source = bitmap.buffer + static_cast<std::ptrdiff_t>(y) * bitmap.pitch;
    for (unsigned x = 0; x < bitmap.width; ++x, source += 4) {
      const int alpha = source[3];
      picture.pixels.push_back(
          alpha == 0 ? ui::Rgba{0, 0, 0, 0}
                     : ui::Rgba{
                           unmultiplied(source[2], alpha),
                           unmultiplied(source[1], alpha),
                           unmultiplied(source[0], alpha),
                           source[3]});
    }
  }
  return picture;
}

}  // namespace

StrikeGlyph strikeGlyph(FontBook& fonts, FontId font, std::uint32_t glyph) {
  FT_FaceRec_* face = fonts.face(font);
  if (face == nullptr || face->num_fixed_sizes == 0) {
    return {};
  }
  int largest = 0;
  for (int i = 1; i < face->num_fixed_sizes; ++i) {
    if (face->available_sizes[i].y_ppem > face->available_sizes[largest].y_ppem) {
      largest = i;
    }
  }
  if (FT_Select_Size(face, largest) != 0 || FT_Load_Glyph(face, glyph, FT_LOAD_COLOR) != 0 ||
      face->glyph->format != FT_GLYPH_FORMAT_BITMAP ||
      face->glyph->bitmap.pixel_mode != FT_PIXEL_MODE_BGRA) {
    return {};
  }
  return {
      .left = face->glyph->bitmap_left,
      .top = face->glyph->bitmap_top,
      .size = static_cast<double>(face->available_sizes[largest].y_ppem) / 64,
      .picture = pictureOf(face->glyph->bitmap)};
}

const GlyphMask& GlyphMasks::find(FontId font, std::uint32_t glyph, double size, GlyphPhase phase) {
  const long pixelSize = sixtyFourths(size);
  const std::uint64_t key = keyOf(font, glyph, pixelSize, phase);
  if (const auto known = kept_.find(key); known != kept_.end()) {
    return known->second;
  }
  if (keptBytes_ > maxBytesKept) {
    kept_.clear();
    keptBytes_ = 0;
  }
  GlyphMask mask = render(font, glyph, pixelSize, phase);
  keptBytes_ += sizeof mask + mask.levels.size();
  return kept_.emplace(key, std::move(mask)).first->second;
}

GlyphMask GlyphMasks::render(FontId font, std::uint32_t glyph, long size, GlyphPhase phase) {
  FT_FaceRec_* face = fonts_.face(font);
  if (face == nullptr || FT_Set_Char_Size(face, 0, size, 72, 72) != 0 ||
      FT_Load_Glyph(face, glyph, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP) != 0 ||
      face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) {
    return {};
  }
  constexpr FT_Pos quarter = 16;
  FT_Outline_Translate(&face->glyph->outline, phase.x * quarter, -phase.y * quarter);
  if (FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL) != 0) {
    return {};
  }
  const FT_Bitmap& bitmap = face->glyph->bitmap;
  GlyphMask mask{
      .left = face->glyph->bitmap_left,
      .top = face->glyph->bitmap_top,
      .width = static_cast<int>(bitmap.width),
      .height = static_cast<int>(bitmap.rows),
      .stride = 0,
      .levels = {}};
  mask.stride = (mask.width + GlyphMask::step - 1) / GlyphMask::step * GlyphMask::step;
  mask.levels.resize(static_cast<std::size_t>(mask.stride) * bitmap.rows);
  for (int y = 0; y < mask.height; ++y) {
    const unsigned char* cover = bitmap.buffer + static_cast<std::ptrdiff_t>(y) * bitmap.pitch;
    std::transform(
        cover,
        cover + mask.width,
        mask.levels.begin() + static_cast<std::ptrdiff_t>(y) * mask.stride,
        coverageOf);
  }
  return mask;
}

const ColorGlyph& GlyphMasks::findColor(FontId font, std::uint32_t glyph, double size) {
  const std::uint64_t key = keyOf(font, glyph, sixtyFourths(size), {});
  if (const auto known = keptColor_.find(key); known != keptColor_.end()) {
    return known->second;
  }
  constexpr std::size_t maxColorGlyphsKept = 256;
  if (keptColor_.size() == maxColorGlyphsKept) {
    keptColor_.clear();
  }
  ColorGlyph result;
  if (const StrikeGlyph strike = strikeGlyph(fonts_, font, glyph); strike.size > 0) {
    const double scale = std::min(size, maximumGlyphSize) / strike.size;
    const auto pixels = [&](int length) { return static_cast<int>(std::lround(length * scale)); };
    result = {
        .left = pixels(strike.left),
        .top = pixels(strike.top),
        .picture = scaled(
            strike.picture,
            std::max(1, pixels(strike.picture.width)),
            std::max(1, pixels(strike.picture.height)))};
  }
  return keptColor_.emplace(key, std::move(result)).first->second;
}

}  // namespace quillpad::drawing
