// The two grounds that a painter draws on: palette indices, and RGBA. Both take the same calls: an
// ink is chosen, then rows of it are laid down by cover. Callers stay inside the canvas.
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

// The ink over what lies under it.
ui::Rgba over(ui::Rgba under, ui::Rgba ink, int level);

// One byte a pixel. Index 0 is the ground, so that a fresh canvas is all zeros and only the rows
// that were marked need to be cleared for the next card. Where the colours do not fit into 256
// entries, the canvas is `full` and its pixels are wrong: the card is then drawn again on an
// RgbaCanvas.
class IndexedCanvas {
 public:
  void start(int width, int height, ui::Rgba ground);

  void chooseInk(ui::Rgba ink);
  // Lays down `count` pixels of the ink from (x, y) on, each with its cover.
  void stamp(int x, int y, const Coverage* levels, int count);
  // Lays down a glyph with its top left corner at (x, y).
  void stamp(int x, int y, const GlyphMask& mask);
  // The same with full cover.
  void span(int x, int y, int count);
  // Takes the ground away but for the given cover: the card's round corners.
  void uncover(int x, int y, const Coverage* levels, int count);

  bool full() const { return full_; }
  PixelRows rows() const;

 private:
  std::uint8_t* row(int x, int y);
  // Forgets what was found out for the ink.
  void forgetInk();
  std::uint8_t indexOf(ui::Rgba color);
  std::uint8_t mixed(std::uint8_t under, int level);
  void mix(std::uint8_t* pixels, const Coverage* levels, int count);
  // First index of the ink's ramp over the ground, less one; -1 where there was no room for one.
  int ramp();

  struct Ramp {
    ui::Rgba ink;
    int base = -1;
  };
  static constexpr int unknown = -1;
  static constexpr int noRoom = -2;

  int width_ = 0;
  int height_ = 0;
  std::vector<std::uint8_t> bytes_;
  std::vector<std::uint8_t> marked_;
  std::vector<ui::Rgba> palette_;
  std::vector<Ramp> ramps_;
  std::array<std::int16_t, fullCoverage + 1> corner_{};
  bool full_ = false;

  ui::Rgba ink_;
  int rampBase_ = unknown;
  std::uint8_t mixedUnder_ = 0;
  std::array<std::int16_t, fullCoverage + 1> mixed_{};
};

// Four bytes a pixel.
class RgbaCanvas {
 public:
  void start(int width, int height, ui::Rgba ground);

  void chooseInk(ui::Rgba ink) { ink_ = ink; }
  void stamp(int x, int y, const Coverage* levels, int count);
  void stamp(int x, int y, const GlyphMask& mask);
  void span(int x, int y, int count);
  void uncover(int x, int y, const Coverage* levels, int count);

  static constexpr bool full() { return false; }
  PixelRows rows() const;

 private:
  std::uint8_t* at(int x, int y);

  int width_ = 0;
  int height_ = 0;
  std::vector<std::uint8_t> bytes_;
  ui::Rgba ground_;
  ui::Rgba ink_;
};

}  // namespace quillpad::drawing
