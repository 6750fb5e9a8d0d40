// Plays a display list onto a canvas. Lengths become device pixels here: glyphs stand at quarter
// pixels on whole baselines, round shapes and clips on whole pixels, and the edges of plain fills
// where they are, by cover.
#pragma once

#include <algorithm>
#include <cmath>
#include <optional>
#include <variant>
#include <vector>

#include "platform/paint/CornerMasks.h"
#include "platform/paint/DisplayList.h"
#include "platform/paint/Pictures.h"
#include "platform/text/Coverage.h"
#include "platform/text/GlyphMasks.h"

namespace quillpad::drawing {

// What is kept from card to card.
struct PaintBox {
  FontBook& fonts;
  Pictures& pictures;
  GlyphMasks glyphs;
  CornerMasks corners;
};

template <class Canvas>
class Painter {
 public:
  Painter(Canvas& canvas, PaintBox& box, const DisplayList& list, ui::Appearance appearance)
      : canvas_(canvas),
        box_(box),
        list_(list),
        appearance_(appearance),
        scale_(list.scale),
        width_(pixel(list.size.width)),
        height_(pixel(list.size.height)) {}

  // Starts the canvas and paints every item, as long as the canvas takes their colours.
  void paint() {
    const Fill* ground = groundFill();
    canvas_.start(
        width_,
        height_,
        ground != nullptr ? ground->color.resolved(appearance_) : ui::Rgba{0, 0, 0, 0});
    for (const Item& item : list_.items) {
      if (canvas_.full()) {
        return;
      }
      gather(item);
      std::visit([&](const auto& content) { draw(content); }, item.content);
    }
    if (ground != nullptr) {
      uncoverCorners(ground->cornerRadius);
    }
  }

 private:
  // A rectangle of whole device pixels with round corners.
  struct Shape {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    double radius = 0;
  };

  int pixel(double length) const {
    constexpr double farAway = 1 << 28;
    return static_cast<int>(std::lround(std::clamp(length * scale_, -farAway, farAway)));
  }

  Shape shape(const Rect& frame, double cornerRadius) const {
    Shape result{
        pixel(frame.x),
        pixel(frame.y),
        pixel(frame.x + frame.width),
        pixel(frame.y + frame.height)};
    const double shorter = std::min(result.right - result.left, result.bottom - result.top);
    result.radius = std::clamp(cornerRadius * scale_, 0.0, std::max(0.0, shorter / 2));
    return result;
  }

  // The list's first item if it is one fill under the whole card: it is the canvas's start, and
  // what is painted later stays inside its round corners.
  const Fill* groundFill() const {
    if (list_.items.empty() || !list_.items.front().clips.empty()) {
      return nullptr;
    }
    const Fill* fill = std::get_if<Fill>(&list_.items.front().content);
    if (fill == nullptr) {
      return nullptr;
    }
    const Shape card = shape(fill->frame, fill->cornerRadius);
    const bool covers =
        card.left <= 0 && card.top <= 0 && card.right >= width_ && card.bottom >= height_;
    return covers ? fill : nullptr;
  }

  void uncoverCorners(double cornerRadius) {
    const double radius = shape({0, 0, list_.size.width, list_.size.height}, cornerRadius).radius;
    if (radius <= 0) {
      return;
    }
    const CornerMask& mask = box_.corners.find(radius);
    for (int y = 0; y < mask.side; ++y) {
      const int open = mask.open[static_cast<std::size_t>(y)];
      for (const int line : {y, height_ - 1 - y}) {
        canvas_.uncover(0, line, mask.row(y), open);
        canvas_.uncover(width_ - open, line, mask.mirroredRow(y) + (mask.side - open), open);
      }
    }
  }

  // Keeps the item's clips that can hide some of it.
  void gather(const Item& item) {
    clips_.clear();
    for (const Clip& clip : item.clips) {
      const Shape mask = shape(clip.frame, clip.cornerRadius);
      const auto* image = std::get_if<ImageItem>(&item.content);
      if (image == nullptr || !holds(mask, shape(image->frame, 0))) {
        clips_.push_back(mask);
      }
    }
  }

  // Whether a round shape has all of a rectangle inside: it has, if it has the corners.
  static bool holds(const Shape& mask, const Shape& inner) {
    for (const int x : {inner.left, inner.right}) {
      for (const int y : {inner.top, inner.bottom}) {
        if (x < mask.left || x > mask.right || y < mask.top || y > mask.bottom) {
          return false;
        }
        const double acrossX = std::max(mask.left + mask.radius - x, x - mask.right + mask.radius);
        const double acrossY = std::max(mask.top + mask.radius - y, y - mask.bottom + mask.radius);
        if (acrossX > 0 && acrossY > 0 && std::hypot(acrossX, acrossY) > mask.radius) {
          return false;
        }
      }
    }
    return true;
  }

  void draw(const Fill& fill) {
    if (&fill == groundFill()) {
      return;
    }
    canvas_.chooseInk(fill.color.resolved(appearance_));
    if (fill.cornerRadius > 0) {
      drawRound(shape(fill.frame, fill.cornerRadius));
    } else {
      drawPlain(fill.frame);
    }
  }

  void drawRound(const Shape& round) {
    const int width = round.right - round.left;
    const int height = round.bottom - round.top;
    if (width <= 0 || height <= 0) {
      return;
    }
    if (round.radius <= 0) {
      for (int y = round.top; y < round.bottom; ++y) {
        span(round.left, y, width);
      }
      return;
    }
    const CornerMask& mask = box_.corners.find(round.radius);
    const int leftPart = std::min(mask.side, (width + 1) / 2);
    const int rightPart = std::min(mask.side, width / 2);
    for (int y = 0; y < height; ++y) {
      const int line = std::min(y, height - 1 - y);
      if (line >= mask.side) {
        span(round.left, round.top + y, width);
        continue;
      }
      stamp(round.left, round.top + y, mask.row(line), leftPart);
      span(round.left + leftPart, round.top + y, width - leftPart - rightPart);
      stamp(
          round.right - rightPart,
          round.top + y,
          mask.mirroredRow(line) + (mask.side - rightPart),
          rightPart);
    }
  }

  // How much of the pixel at `at` lies between two edges.
  static double overlap(int at, double begin, double end) {
    return std::clamp(std::min(end, at + 1.0) - std::max(begin, static_cast<double>(at)), 0.0, 1.0);
  }

  void drawPlain(const Rect& frame) {
    const double left = std::clamp(frame.x * scale_, 0.0, static_cast<double>(width_));
    const double right =
        std::clamp((frame.x + frame.width) * scale_, left, static_cast<double>(width_));
    const double top = std::clamp(frame.y * scale_, 0.0, static_cast<double>(height_));
    const double bottom =
        std::clamp((frame.y + frame.height) * scale_, top, static_cast<double>(height_));
    const int first = static_cast<int>(left);
    const int count = static_cast<int>(std::ceil(right)) - first;
    if (count <= 0) {
      return;
    }
    for (int y = static_cast<int>(top); y < bottom; ++y) {
      row_.clear();
      const double high = overlap(y, top, bottom);
      for (int x = first; x < first + count; ++x) {
        row_.push_back(
            static_cast<Coverage>(std::lround(fullCoverage * high * overlap(x, left, right))));
      }
      if (std::ranges::all_of(row_, [](Coverage level) { return level == fullCoverage; })) {
        span(first, y, count);
      } else {
        stamp(first, y, row_.data(), count);
      }
    }
  }

  void draw(const TextItem& text) {
    for (const GlyphRun& run : text.runs) {
      if (box_.fonts.hasColorBitmaps(run.font)) {
        drawColor(run);
      } else {
        canvas_.chooseInk(text.color.resolved(appearance_));
        drawMasks(run);
      }
    }
  }

  void drawMasks(const GlyphRun& run) {
    for (const Glyph& glyph : run.glyphs) {
      const int quarters = pixel(glyph.origin.x * 4);
      const GlyphMask& mask = box_.glyphs.find(run.font, glyph.id, run.size * scale_, quarters & 3);
      const int left = (quarters >> 2) + mask.left;
      const int top = pixel(glyph.origin.y) - mask.top;
      const bool inside =
          left >= 0 && top >= 0 && left + mask.width <= width_ && top + mask.height <= height_;
      if (inside && clips_.empty()) {
        canvas_.stamp(left, top, mask);
        continue;
      }
      for (int y = 0; y < mask.height; ++y) {
        stamp(left, top + y, mask.row(y), mask.width);
      }
    }
  }

  void drawColor(const GlyphRun& run) {
    for (const Glyph& glyph : run.glyphs) {
      const ColorGlyph& found = box_.glyphs.findColor(run.font, glyph.id, run.size * scale_);
      draw(found.picture, pixel(glyph.origin.x) + found.left, pixel(glyph.origin.y) - found.top);
    }
  }

  void draw(const ImageItem& image) {
    const Bitmap* picture = box_.pictures.find(image.name, std::clamp(list_.scale, 1, 3));
    if (picture == nullptr) {
      return;
    }
    const Shape place = shape(image.frame, 0);
    const int width = place.right - place.left;
    const int height = place.bottom - place.top;
    if (width <= 0 || height <= 0 || std::int64_t{width} * height > maximumPixels) {
      return;
    }
    if (width == picture->width && height == picture->height) {
      draw(*picture, place.left, place.top);
    } else {
      draw(scaled(*picture, width, height), place.left, place.top);
    }
  }

  // Pixels of one colour side by side go down together, as one ink with their alphas for cover.
  void draw(const Bitmap& picture, int left, int top) {
    for (int y = 0; y < picture.height && !canvas_.full(); ++y) {
      const ui::Rgba* pixels = picture.row(y);
      for (int x = 0; x < picture.width;) {
        const ui::Rgba color = pixels[x];
        const int begin = x;
        pictureRow_.clear();
        do {
          pictureRow_.push_back(coverageOf(pixels[x].alpha));
          ++x;
        } while (x < picture.width && (pixels[x].alpha == 0 || sameInk(pixels[x], color)));
        canvas_.chooseInk({color.red, color.green, color.blue, 255});
        stamp(left + begin, top + y, pictureRow_.data(), x - begin);
      }
    }
  }

  static bool sameInk(ui::Rgba a, ui::Rgba b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
  }

  void span(int x, int y, int count) {
    if (clips_.empty()) {
      const int begin = std::max(x, 0);
      const int end = std::min(x + count, width_);
      if (y >= 0 && y < height_ && begin < end) {
        canvas_.span(begin, y, end - begin);
      }
    } else {
      full_.assign(static_cast<std::size_t>(std::max(count, 0)), fullCoverage);
      stamp(x, y, full_.data(), count);
    }
  }

  void stamp(int x, int y, const Coverage* levels, int count) {
    const int begin = std::max(x, 0);
    const int end = std::min(x + count, width_);
    if (y < 0 || y >= height_ || begin >= end) {
      return;
    }
    levels += begin - x;
    if (!clips_.empty()) {
      clipped_.assign(levels, levels + (end - begin));
      for (const Shape& clip : clips_) {
        hide(clip, begin, y);
      }
      levels = clipped_.data();
    }
    canvas_.stamp(begin, y, levels, end - begin);
  }

  // Takes away from the row in `clipped_`, which begins at (x, y), what lies outside the clip.
  void hide(const Shape& clip, int x, int y) {
    const int line = std::min(y - clip.top, clip.bottom - 1 - y);
    const CornerMask* mask = clip.radius > 0 ? &box_.corners.find(clip.radius) : nullptr;
    for (std::size_t i = 0; i < clipped_.size(); ++i) {
      const int at = x + static_cast<int>(i);
      const int column = std::min(at - clip.left, clip.right - 1 - at);
      if (line < 0 || column < 0) {
        clipped_[i] = 0;
      } else if (mask != nullptr && line < mask->side && column < mask->side) {
        clipped_[i] = masked(clipped_[i], mask->row(line)[column]);
      }
    }
  }

  Canvas& canvas_;
  PaintBox& box_;
  const DisplayList& list_;
  ui::Appearance appearance_;
  double scale_;
  int width_;
  int height_;
  std::vector<Shape> clips_;   // of the item being painted
  std::vector<Coverage> row_;  // of a plain fill
  std::vector<Coverage> pictureRow_;
  std::vector<Coverage> full_;  // stands for a span where there are clips
  std::vector<Coverage> clipped_;
};

}  // namespace quillpad::drawing
