#include "platform/paint/Canvas.h"

#include <algorithm>
#include <cstring>

namespace quillpad::drawing {

namespace {

constexpr std::size_t paletteSize = 256;

// (from * (255 - part) + to * part) / 255, rounded.
std::uint8_t between(int from, int to, int part) {
  const int sum = from * (255 - part) + to * part + 127;
  return static_cast<std::uint8_t>(sum / 255);
}

ui::Rgba withAlpha(ui::Rgba color, int alpha) {
  if (alpha == 0) {
    return {0, 0, 0, 0};
  }
  return {color.red, color.green, color.blue, static_cast<std::uint8_t>(alpha)};
}

}  // namespace

ui::Rgba over(ui::Rgba under, ui::Rgba ink, int level) {
  const int part = alphaOf(level) * ink.alpha / 255;
  if (under.alpha == 255) {
    return {
        between(under.red, ink.red, part),
        between(under.green, ink.green, part),
        between(under.blue, ink.blue, part),
        255};
  }
  const int alpha = part + under.alpha * (255 - part) / 255;
  if (alpha == 0) {
    return {0, 0, 0, 0};
  }
  const int inkPart = 255 * part / alpha;
  return {
      between(under.red, ink.red, inkPart),
      between(under.green, ink.green, inkPart),
      between(under.blue, ink.blue, inkPart),
      static_cast<std::uint8_t>(alpha)};
}

void IndexedCanvas::start(int width, int height, ui::Rgba ground) {
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
  palette_.assign(1, ground);
  ramps_.clear();
  corner_.fill(unknown);
  full_ = false;
  forgetInk();
}

void IndexedCanvas::chooseInk(ui::Rgba ink) {
  if (ink == ink_) {
    return;
  }
  ink_ = ink;
  forgetInk();
}

void IndexedCanvas::forgetInk() {
  rampBase_ = unknown;
  mixed_.fill(unknown);
}

std::uint8_t* IndexedCanvas::row(int x, int y) {
  const auto line = static_cast<std::size_t>(y);
  marked_[line] = 1;
  return bytes_.data() + line * (1 + static_cast<std::size_t>(width_)) + 1 + x;
}

std::uint8_t IndexedCanvas::indexOf(ui::Rgba color) {
  const auto found = std::ranges::find(palette_, color);
  if (found == palette_.end()) {
    if (palette_.size() == paletteSize) {
      full_ = true;
      return 0;
    }
    palette_.push_back(color);
    return static_cast<std::uint8_t>(palette_.size() - 1);
  }
  return static_cast<std::uint8_t>(found - palette_.begin());
}

int IndexedCanvas::ramp() {
  if (rampBase_ != unknown) {
    return rampBase_;
  }
  const auto known = std::ranges::find(ramps_, ink_, &Ramp::ink);
  if (known != ramps_.end()) {
    return rampBase_ = known->base;
  }
  rampBase_ = noRoom;
  if (palette_.size() + fullCoverage <= paletteSize) {
    rampBase_ = static_cast<int>(palette_.size()) - 1;
    for (int level = 1; level <= fullCoverage; ++level) {
      palette_.push_back(over(palette_[0], ink_, level));
    }
  }
  ramps_.push_back({ink_, rampBase_});
  return rampBase_;
}

std::uint8_t IndexedCanvas::mixed(std::uint8_t under, int level) {
  const int step = under - rampBase_;
  if (rampBase_ >= 0 && step >= 1 && step <= fullCoverage && ink_.alpha == 255) {
    // Where pixels of one ink meet, the ground shows through what neither covers.
    return static_cast<std::uint8_t>(rampBase_ + step + masked(fullCoverage - step, level));
  }
  if (under != mixedUnder_) {
    mixedUnder_ = under;
    mixed_.fill(unknown);
  }
  std::int16_t& index = mixed_[static_cast<std::size_t>(level)];
  if (index == unknown) {
    index = indexOf(over(palette_[under], ink_, level));
  }
  return static_cast<std::uint8_t>(index);
}

void IndexedCanvas::stamp(int x, int y, const Coverage* levels, int count) {
  mix(row(x, y), levels, count);
}

void IndexedCanvas::mix(std::uint8_t* pixels, const Coverage* levels, int count) {
  for (int i = 0; i < count; ++i) {
    if (levels[i] != 0) {
      pixels[i] = mixed(pixels[i], levels[i]);
    }
  }
}

// On the bare ground a level is a step on the ink's ramp. Padding lies on whatever follows and
// leaves it as it is.
void IndexedCanvas::stamp(int x, int y, const GlyphMask& mask) {
  using Pixels [[gnu::vector_size(GlyphMask::step)]] = std::uint8_t;
  const int base = ramp();
  const int height = mask.height;
  const int stride = mask.stride;
  for (int line = 0; line < height; ++line) {
    std::uint8_t* pixels = row(x, y + line);
    const Coverage* levels = mask.row(line);
    for (int at = 0; at < stride; at += GlyphMask::step) {
      Pixels under;
      Pixels ink;
      std::memcpy(&under, pixels + at, sizeof under);
      std::memcpy(&ink, levels + at, sizeof ink);
      const auto inked = reinterpret_cast<Pixels>(ink != 0);
      std::array<std::uint64_t, 2> met{};  // what other than the ground the ink falls on
      const Pixels meeting = under & inked;
      std::memcpy(met.data(), &meeting, sizeof meeting);
      if ((met[0] | met[1]) != 0 || base < 0) {
        mix(pixels + at, levels + at, GlyphMask::step);
      } else {
        under |= (ink + static_cast<std::uint8_t>(base)) & inked;
        std::memcpy(pixels + at, &under, sizeof under);
      }
    }
  }
}

void IndexedCanvas::span(int x, int y, int count) {
  std::uint8_t* pixels = row(x, y);
  if (ink_.alpha == 255) {
    std::memset(pixels, mixed(0, fullCoverage), static_cast<std::size_t>(count));
    return;
  }
  for (int i = 0; i < count; ++i) {
    pixels[i] = mixed(pixels[i], fullCoverage);
  }
}

void IndexedCanvas::uncover(int x, int y, const Coverage* levels, int count) {
  std::uint8_t* pixels = row(x, y);
  for (int i = 0; i < count; ++i) {
    const int level = levels[i];
    if (level == fullCoverage) {
      continue;
    }
    std::int16_t& index = corner_[static_cast<std::size_t>(level)];
    if (index == unknown) {
      index = indexOf(withAlpha(palette_[0], palette_[0].alpha * alphaOf(level) / 255));
    }
    pixels[i] = static_cast<std::uint8_t>(index);
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

void RgbaCanvas::start(int width, int height, ui::Rgba ground) {
  width_ = width;
  height_ = height;
  ground_ = ground;
  const std::size_t stride = 1 + std::size_t{4} * static_cast<std::size_t>(width);
  bytes_.assign(stride * static_cast<std::size_t>(height), 0);
  chooseInk(ground);
  for (int y = 0; y < height; ++y) {
    std::uint8_t* pixel = at(0, y);
    for (int x = 0; x < width; ++x, pixel += 4) {
      std::memcpy(pixel, &ground, 4);
    }
  }
}

std::uint8_t* RgbaCanvas::at(int x, int y) {
  const std::size_t stride = 1 + std::size_t{4} * static_cast<std::size_t>(width_);
  return bytes_.data() + static_cast<std::size_t>(y) * stride + 1 +
         std::size_t{4} * static_cast<std::size_t>(x);
}

void RgbaCanvas::stamp(int x, int y, const Coverage* levels, int count) {
  std::uint8_t* pixel = at(x, y);
  for (int i = 0; i < count; ++i, pixel += 4) {
    if (levels[i] == 0) {
      continue;
    }
    ui::Rgba color;
    std::memcpy(&color, pixel, 4);
    color = over(color, ink_, levels[i]);
    std::memcpy(pixel, &color, 4);
  }
}

void RgbaCanvas::stamp(int x, int y, const GlyphMask& mask) {
  for (int line = 0; line < mask.height; ++line) {
    stamp(x, y + line, mask.row(line), mask.width);
  }
}

void RgbaCanvas::span(int x, int y, int count) {
  std::uint8_t* pixel = at(x, y);
  for (int i = 0; i < count; ++i, pixel += 4) {
    ui::Rgba color;
    std::memcpy(&color, pixel, 4);
    color = over(color, ink_, fullCoverage);
    std::memcpy(pixel, &color, 4);
  }
}

void RgbaCanvas::uncover(int x, int y, const Coverage* levels, int count) {
  std::uint8_t* pixel = at(x, y);
  for (int i = 0; i < count; ++i, pixel += 4) {
    if (levels[i] == fullCoverage) {
      continue;
    }
    const ui::Rgba color = withAlpha(ground_, ground_.alpha * alphaOf(levels[i]) / 255);
    std::memcpy(pixel, &color, 4);
  }
}

PixelRows RgbaCanvas::rows() const {
  return {
      .width = width_, .height = height_, .bytesPerPixel = 4, .data = bytes_.data(), .palette = {}};
}

}  // namespace quillpad::drawing
