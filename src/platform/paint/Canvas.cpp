#include "platform/paint/Canvas.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <tuple>

namespace quillpad::drawing {

namespace {

constexpr std::size_t paletteSize = 256;

// (from * (255 - part) + to * part) / 255, rounded.
std::uint8_t between(int from, int to, int part) {
  const int sum = from * (255 - part) + to * part + 127;
  return static_cast<std::uint8_t>(sum / 255);
}

// What a cover leaves of a colour.
ui::Rgba covered(ui::Rgba color, int level) {
  const int alpha = color.alpha * alphaOf(level) / 255;
  return alpha == 0
             ? ui::Rgba{0, 0, 0, 0}
             : ui::Rgba{color.red, color.green, color.blue, static_cast<std::uint8_t>(alpha)};
}

}  // namespace

ui::Rgba over(ui::Rgba under, ui::Rgba color, int level) {
  const int part = alphaOf(level) * color.alpha / 255;
  if (under.alpha == 255) {
    return {
        between(under.red, color.red, part),
        between(under.green, color.green, part),
        between(under.blue, color.blue, part),
        255};
  }
  const int alpha = part + under.alpha * (255 - part) / 255;
  if (alpha == 0) {
    return {0, 0, 0, 0};
  }
  const int colorPart = 255 * part / alpha;
  return {
      between(under.red, color.red, colorPart),
      between(under.green, color.green, colorPart),
      between(under.blue, color.blue, colorPart),
      static_cast<std::uint8_t>(alpha)};
}

void IndexedCanvas::start(int width, int height, ui::Rgba background) {
  const std::size_t stride = 1 + static_cast<std::size_t>(width);
  if (width == width_ && height == height_) {
    for (std::size_t y = 0; y < marked_.size(); ++y) {
      if (marked_[y] != 0) {
        std::memset(bytes_.data() + y * stride, 0, stride);
      }
    }
  } else {
    width_ = width;
    height_ = height;
    bytes_.assign(stride * static_cast<std::size_t>(height) + GlyphMask::step, 0);
  }
  marked_.assign(static_cast<std::size_t>(height), 0);
  palette_.clear();
  slots_.fill(0);
  add(background);
  ramps_.clear();
  corner_.fill(unknown);
  full_ = false;
  forgetColor();
}

void IndexedCanvas::setColor(ui::Rgba color) {
  if (color == color_) {
    return;
  }
  color_ = color;
  forgetColor();
}

void IndexedCanvas::forgetColor() {
  rampBase_ = unknown;
  mixed_.fill(unknown);
}

std::uint8_t* IndexedCanvas::row(int x, int y) {
  const auto line = static_cast<std::size_t>(y);
  marked_[line] = 1;
  return bytes_.data() + line * (1 + static_cast<std::size_t>(width_)) + 1 + x;
}

std::uint16_t& IndexedCanvas::slotOf(ui::Rgba color) {
  constexpr std::uint32_t spread = 0x9e3779b1;
  static_assert(std::tuple_size_v<decltype(slots_)> == 1U << 9U);
  std::size_t slot = std::bit_cast<std::uint32_t>(color) * spread >> (32U - 9U);
  while (slots_[slot] != 0 && palette_[slots_[slot] - 1U] != color) {
    slot = (slot + 1) % slots_.size();
  }
  return slots_[slot];
}

void IndexedCanvas::add(ui::Rgba color) {
  std::uint16_t& slot = slotOf(color);
  palette_.push_back(color);
  if (slot == 0) {
    slot = static_cast<std::uint16_t>(palette_.size());
  }
}

std::uint8_t IndexedCanvas::indexOf(ui::Rgba color) {
  if (const int known = slotOf(color); known != 0) {
    return static_cast<std::uint8_t>(known - 1);
  }
  if (palette_.size() == paletteSize) {
    full_ = true;
    return 0;
  }
  add(color);
  return static_cast<std::uint8_t>(palette_.size() - 1);
}

int IndexedCanvas::ramp() {
  if (rampBase_ != unknown) {
    return rampBase_;
  }
  const auto known = std::ranges::find(ramps_, color_, &Ramp::color);
  if (known != ramps_.end()) {
    return rampBase_ = known->base;
  }
  rampBase_ = noRoom;
  if (palette_.size() + fullCoverage <= paletteSize) {
    rampBase_ = static_cast<int>(palette_.size()) - 1;
    for (int level = 1; level <= fullCoverage; ++level) {
      add(over(palette_[0], color_, level));
    }
  }
  ramps_.push_back({color_, rampBase_});
  return rampBase_;
}

std::uint8_t IndexedCanvas::mixed(std::uint8_t under, int level) {
  const int step = under - rampBase_;
  if (rampBase_ >= 0 && step >= 1 && step <= fullCoverage && color_.alpha == 255) {
    // Where pixels of one color meet, the background shows through what neither covers.
    return static_cast<std::uint8_t>(rampBase_ + step + masked(fullCoverage - step, level));
  }
  if (under != mixedUnder_) {
    mixedUnder_ = under;
    mixed_.fill(unknown);
  }
  std::int16_t& index = mixed_[static_cast<std::size_t>(level)];
  if (index == unknown) {
    index = indexOf(over(palette_[under], color_, level));
  }
  return static_cast<std::uint8_t>(index);
}

void IndexedCanvas::blend(int x, int y, std::span<const Coverage> levels) {
  mix(row(x, y), levels);
}

void IndexedCanvas::mix(std::uint8_t* pixels, std::span<const Coverage> levels) {
  for (const Coverage level : levels) {
    if (level != 0) {
      *pixels = mixed(*pixels, level);
    }
    ++pixels;
  }
}

// On the bare background a level is a step on the color's ramp. Padding lies on whatever follows
// and leaves it as it is.
void IndexedCanvas::blend(int x, int y, const GlyphMask& mask) {
  using Pixels [[gnu::vector_size(GlyphMask::step)]] = std::uint8_t;
  const int base = ramp();
  const int height = mask.height;
  const int stride = mask.stride;
  for (int line = 0; line < height; ++line) {
    std::uint8_t* pixels = row(x, y + line);
    const Coverage* levels = mask.row(line);
    for (int at = 0; at < stride; at += GlyphMask::step) {
      Pixels under;
      Pixels level;
      std::memcpy(&under, pixels + at, sizeof under);
      std::memcpy(&level, levels + at, sizeof level);
      const auto covered = reinterpret_cast<Pixels>(level != 0);
      std::array<std::uint64_t, 2> met{};  // what other than the background the glyph falls on
      const Pixels meeting = under & covered;
      std::memcpy(met.data(), &meeting, sizeof meeting);
      if ((met[0] | met[1]) != 0 || base < 0) {
        mix(pixels + at, {levels + at, GlyphMask::step});
      } else {
        under |= (level + static_cast<std::uint8_t>(base)) & covered;
        std::memcpy(pixels + at, &under, sizeof under);
      }
    }
  }
}

void IndexedCanvas::fill(int x, int y, int count) {
  std::uint8_t* pixels = row(x, y);
  if (color_.alpha == 255) {
    std::memset(pixels, mixed(0, fullCoverage), static_cast<std::size_t>(count));
    return;
  }
  for (int i = 0; i < count; ++i) {
    pixels[i] = mixed(pixels[i], fullCoverage);
  }
}

void IndexedCanvas::clear(int x, int y, std::span<const Coverage> levels) {
  std::uint8_t* pixel = row(x, y);
  for (const Coverage level : levels) {
    if (level != fullCoverage) {
      std::int16_t& corner = corner_[level];
      if (*pixel != 0 || corner == unknown) {
        const std::uint8_t index = indexOf(covered(palette_[*pixel], level));
        if (*pixel == 0) {
          corner = index;
        }
        *pixel = index;
      } else {
        *pixel = static_cast<std::uint8_t>(corner);
      }
    }
    ++pixel;
  }
}

PixelRows IndexedCanvas::rows() const {
  return {
      .width = width_,
      .height = height_,
      .bytesPerPixel = 1,
      .data = bytes_.data(),
      .palette = palette_};
}

void RgbaCanvas::start(int width, int height, ui::Rgba background) {
  width_ = width;
  height_ = height;
  const std::size_t stride = 1 + std::size_t{4} * static_cast<std::size_t>(width);
  bytes_.assign(stride * static_cast<std::size_t>(height), 0);
  for (int y = 0; y < height; ++y) {
    change(
        0, y, static_cast<std::size_t>(width), [&](ui::Rgba, std::size_t) { return background; });
  }
}

template <class Change>
void RgbaCanvas::change(int x, int y, std::size_t count, const Change& change) {
  const std::size_t stride = 1 + std::size_t{4} * static_cast<std::size_t>(width_);
  std::uint8_t* pixel = bytes_.data() + static_cast<std::size_t>(y) * stride + 1 +
                        std::size_t{4} * static_cast<std::size_t>(x);
  for (std::size_t i = 0; i < count; ++i, pixel += 4) {
    ui::Rgba color;
    std::memcpy(&color, pixel, 4);
    color = change(color, i);
    std::memcpy(pixel, &color, 4);
  }
}

void RgbaCanvas::blend(int x, int y, std::span<const Coverage> levels) {
  change(x, y, levels.size(), [&](ui::Rgba under, std::size_t i) {
    return levels[i] == 0 ? under : over(under, color_, levels[i]);
  });
}

void RgbaCanvas::blend(int x, int y, const GlyphMask& mask) {
  for (int line = 0; line < mask.height; ++line) {
    blend(x, y + line, {mask.row(line), static_cast<std::size_t>(mask.width)});
  }
}

void RgbaCanvas::fill(int x, int y, int count) {
  change(x, y, static_cast<std::size_t>(count), [&](ui::Rgba under, std::size_t) {
    return over(under, color_, fullCoverage);
  });
}

void RgbaCanvas::clear(int x, int y, std::span<const Coverage> levels) {
  change(x, y, levels.size(), [&](ui::Rgba under, std::size_t i) {
    return levels[i] == fullCoverage ? under : covered(under, levels[i]);
  });
}

PixelRows RgbaCanvas::rows() const {
  return {
      .width = width_, .height = height_, .bytesPerPixel = 4, .data = bytes_.data(), .palette = {}};
}

}  // namespace quillpad::drawing
