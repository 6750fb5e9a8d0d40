// The two canvases that cards are painted on: palette indices, and RGBA. A colour is set, then rows
// of it are laid down. Callers stay inside the canvas. Belong to one thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/paint/PixelRows.h"
#include "platform/text/Coverage.h"
#include "platform/text/GlyphMasks.h"
#include "platform/ui/Color.h"

namespace quillpad::drawing {

// The color over what lies under it, at a level of cover.
ui::Rgba over(ui::Rgba under, ui::Rgba color, int level);

class Canvas {
 public:
  virtual ~Canvas() = default;

  virtual void start(int width, int height, ui::Rgba background) = 0;
  virtual void setColor(ui::Rgba color) = 0;
  // Lays the color down from (x, y) on, on each pixel with its cover.
  virtual void blend(int x, int y, std::span<const Coverage> levels) = 0;
  // Lays down a glyph with its top left corner at (x, y).
  virtual void blend(int x, int y, const GlyphMask& mask) = 0;
  // Lays the color down on `count` pixels, with full cover.
  virtual void fill(int x, int y, int count) = 0;
  // Leaves of each pixel what the given cover does: the card's round corners.
  virtual void clear(int x, int y, std::span<const Coverage> levels) = 0;

  // Whether there are more colours than the canvas can hold, which makes its pixels wrong.
  virtual bool full() const { return false; }
  virtual PixelRows rows() const = 0;
};

// One byte a pixel. Index 0 is the background, so that a fresh canvas is all zeros and only the
// rows that were marked need to be cleared for the next card. A card whose colours do not fit into
// 256 entries is to be drawn again on an RgbaCanvas.
class IndexedCanvas final : public Canvas {
 public:
  void start(int width, int height, ui::Rgba background) override;
  void setColor(ui::Rgba color) override;
  void blend(int x, int y, std::span<const Coverage> levels) override;
  void blend(int x, int y, const GlyphMask& mask) override;
  void fill(int x, int y, int count) override;
  void clear(int x, int y, std::span<const Coverage> levels) override;
  bool full() const override { return full_; }
  PixelRows rows() const override;

 private:
  std::uint8_t* row(int x, int y);
  // Forgets what was found out for the color.
  void forgetColor();
  // Where the color is noted, or is to be.
  std::uint16_t& slotOf(ui::Rgba color);
  void add(ui::Rgba color);
  std::uint8_t indexOf(ui::Rgba color);
  std::uint8_t mixed(std::uint8_t under, int level);
  void mix(std::uint8_t* pixels, std::span<const Coverage> levels);
  // First index of the color's ramp over the background, less one; -1 where there was no room for
  // one.
  int ramp();

  struct Ramp {
    ui::Rgba color;
    int base = -1;
  };
  static constexpr int unknown = -1;
  static constexpr int noRoom = -2;

  int width_ = 0;
  int height_ = 0;
  std::vector<std::uint8_t> bytes_;
  std::vector<std::uint8_t> marked_;
  std::vector<ui::Rgba> palette_;
  std::array<std::uint16_t, 512> slots_{};  // by hash, one more than the first index of a color
  std::vector<Ramp> ramps_;
  std::array<std::int16_t, fullCoverage + 1> corner_{};  // what is left of the background
  bool full_ = false;

  ui::Rgba color_;
  int rampBase_ = unknown;
  std::uint8_t mixedUnder_ = 0;
  std::array<std::int16_t, fullCoverage + 1> mixed_{};
};

// Four bytes a pixel.
class RgbaCanvas final : public Canvas {
 public:
  void start(int width, int height, ui::Rgba background) override;
  void setColor(ui::Rgba color) override { color_ = color; }
  void blend(int x, int y, std::span<const Coverage> levels) override;
  void blend(int x, int y, const GlyphMask& mask) override;
  void fill(int x, int y, int count) override;
  void clear(int x, int y, std::span<const Coverage> levels) override;
  PixelRows rows() const override;

 private:
  // Replaces each of the pixels by what `change(color, i)` makes of the i-th.
  template <class Change>
  void change(int x, int y, std::size_t count, const Change& change);

  int width_ = 0;
  int height_ = 0;
  std::vector<std::uint8_t> bytes_;
  ui::Rgba color_;
};

}  // namespace quillpad::drawing
