#include "platform/paint/Painter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ranges>
#include <variant>
#include <vector>

#include "platform/paint/Background.h"
#include "platform/paint/ClipMask.h"

namespace quillpad::drawing {
namespace {

class Painter {
 public:
  Painter(const DisplayList& list, ui::Appearance appearance, PaintCache& cache, Canvas& canvas)
      : list_(list),
        appearance_(appearance),
        cache_(cache),
        canvas_(canvas),
        background_(backgroundOf(list)),
        width_(pixel(list.size.width)),
        height_(pixel(list.size.height)),
        clips_(cache.shapes) {}

  void paint() {
    canvas_.start(width_, height_, background_.color.resolved(appearance_));
    for (std::size_t i = background_.items; i < list_.items.size() && !canvas_.full(); ++i) {
      const Item& item = list_.items[i];
      setClips(item);
      std::visit([&](const auto& content) { draw(content); }, item.content);
    }
    clearCorners();
  }

 private:
  int pixel(double length) const {
    constexpr double farAway = 1 << 28;
    return static_cast<int>(
        std::lround(std::fmin(std::fmax(length * list_.scale, -farAway), farAway)));
  }

  RoundShape shape(const Rect& frame, double cornerRadius) const {
    RoundShape result{
        pixel(frame.x),
        pixel(frame.y),
        pixel(frame.x + frame.width),
        pixel(frame.y + frame.height)};
    const int shorter = std::min(result.right - result.left, result.bottom - result.top);
    result.radius = std::fmin(std::fmax(cornerRadius * list_.scale, 0), std::max(shorter, 0) / 2.0);
    return result;
  }

  // The card's own corners are not among an item's clips: they are cleared when all is painted.
  void setClips(const Item& item) {
    clips_.clear();
    for (const Clip& clip : item.clips) {
      if (!coversCard(list_, background_.cornerRadius, clip.frame, clip.cornerRadius)) {
        clips_.add(shape(clip.frame, clip.cornerRadius));
      }
    }
  }

  void clearCorners() {
    const RoundShape card =
        shape({0, 0, list_.size.width, list_.size.height}, background_.cornerRadius);
    row_.resize(static_cast<std::size_t>(std::min(card.cornerSide(), (width_ + 1) / 2)));
    for (int line = 0; line < std::min(card.cornerSide(), (height_ + 1) / 2); ++line) {
      cache_.shapes.cover(card, 0, line, row_);
      const auto partial = std::ranges::find(row_, fullCoverage) - row_.begin();
      std::span<Coverage> corner(row_.data(), static_cast<std::size_t>(partial));
      clear(0, line, corner);
      corner = corner.first(std::min(corner.size(), static_cast<std::size_t>(width_ / 2)));
      std::ranges::reverse(corner);
      clear(width_ - static_cast<int>(corner.size()), line, corner);
    }
  }

  // In a row and the one as far from the bottom.
  void clear(int x, int line, std::span<const Coverage> levels) {
    canvas_.clear(x, line, levels);
    if (const int below = height_ - 1 - line; below != line) {
      canvas_.clear(x, below, levels);
    }
  }

  void draw(const Fill& fill) {
    canvas_.setColor(fill.color.resolved(appearance_));
    if (fill.cornerRadius > 0) {
      drawRound(shape(fill.frame, fill.cornerRadius));
    } else {
      drawPlain(fill.frame);
    }
  }

  void drawRound(const RoundShape& round) {
    const int begin = std::max(round.left, 0);
    const int count = std::min(round.right, width_) - begin;
    const int end = std::min(round.bottom, height_);
    for (int y = std::max(round.top, 0); y < end && count > 0; ++y) {
      if (round.line(y) >= round.cornerSide()) {
        fillRow(begin, y, count);
        continue;
      }
      row_.resize(static_cast<std::size_t>(count));
      cache_.shapes.cover(round, begin, y, row_);
      const auto isFull = [](Coverage level) { return level == fullCoverage; };
      const auto first = std::ranges::find_if(row_, isFull) - row_.begin();
      const auto last =
          std::ranges::find_if(row_ | std::views::reverse, isFull).base() - row_.begin();
      if (first >= last || !clips_.empty()) {
        blendRow(begin, y, row_);
        continue;
      }
      const std::span<const Coverage> row = row_;
      blendRow(begin, y, row.first(static_cast<std::size_t>(first)));
      canvas_.fill(begin + static_cast<int>(first), y, static_cast<int>(last - first));
      blendRow(begin + static_cast<int>(last), y, row.subspan(static_cast<std::size_t>(last)));
    }
  }

  // How much of the pixel at `at` lies between two edges.
  static double overlap(int at, double begin, double end) {
    return std::clamp(std::min(end, at + 1.0) - std::max(begin, static_cast<double>(at)), 0.0, 1.0);
  }

  void drawPlain(const Rect& frame) {
    const auto onCanvas = [&](double length, double min, int max) {
      return std::fmin(std::fmax(length * list_.scale, min), max);
    };
    const double left = onCanvas(frame.x, 0, width_);
    const double right = onCanvas(frame.x + frame.width, left, width_);
    const double top = onCanvas(frame.y, 0, height_);
    const double bottom = onCanvas(frame.y + frame.height, top, height_);
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
        fillRow(first, y, count);
      } else {
        blendRow(first, y, row_);
      }
    }
  }

  void draw(const TextItem& text) {
    for (const GlyphRun& run : text.runs) {
      if (cache_.fonts.hasColorBitmaps(run.font)) {
        drawColor(run);
      } else {
        canvas_.setColor(text.color.resolved(appearance_));
        drawMasks(run);
      }
    }
  }

  void drawMasks(const GlyphRun& run) {
    for (const Glyph& glyph : run.glyphs) {
      const int x = pixel(glyph.origin.x * 4);
      const int y = pixel(glyph.origin.y * 4);
      const GlyphMask& mask =
          cache_.glyphs.find(run.font, glyph.id, run.size * list_.scale, {x & 3, y & 3});
      const int left = (x >> 2) + mask.left;
      const int top = (y >> 2) - mask.top;
      const bool inside =
          left >= 0 && top >= 0 && left + mask.width <= width_ && top + mask.height <= height_;
      if (inside && clips_.empty()) {
        canvas_.blend(left, top, mask);
        continue;
      }
      for (int line = 0; line < mask.height; ++line) {
        blendRow(left, top + line, {mask.row(line), static_cast<std::size_t>(mask.width)});
      }
    }
  }

  void drawColor(const GlyphRun& run) {
    for (const Glyph& glyph : run.glyphs) {
      const ColorGlyph& found = cache_.glyphs.findColor(run.font, glyph.id, run.size * list_.scale);
      draw(found.picture, pixel(glyph.origin.x) + found.left, pixel(glyph.origin.y) - found.top);
    }
  }

  void draw(const ImageItem& image) {
    const Bitmap* picture = cache_.pictures.find(image.name, list_.scale);
    const RoundShape place = shape(image.frame, 0);
    const int width = place.right - place.left;
    const int height = place.bottom - place.top;
    if (picture == nullptr || width <= 0 || height <= 0 ||
        std::int64_t{width} * height > maximumPixels) {
      return;
    }
    if (width == picture->width && height == picture->height) {
      draw(*picture, place.left, place.top);
    } else {
      draw(scaled(*picture, width, height), place.left, place.top);
    }
  }

  // Pixels of one colour side by side go down together, with their alphas for cover.
  void draw(const Bitmap& picture, int left, int top) {
    const auto sameColor = [](ui::Rgba a, ui::Rgba b) {
      return a.red == b.red && a.green == b.green && a.blue == b.blue;
    };
    for (int y = 0; y < picture.height && !canvas_.full(); ++y) {
      const ui::Rgba* pixels = picture.row(y);
      for (int x = 0; x < picture.width;) {
        const ui::Rgba color = pixels[x];
        const int begin = x;
        row_.clear();
        do {
          row_.push_back(coverageOf(pixels[x].alpha));
          ++x;
        } while (x < picture.width && (pixels[x].alpha == 0 || sameColor(pixels[x], color)));
        canvas_.setColor({color.red, color.green, color.blue, 255});
        blendRow(left + begin, top + y, row_);
      }
    }
  }

  // On the canvas all of it.
  void fillRow(int x, int y, int count) {
    if (clips_.empty()) {
      canvas_.fill(x, y, count);
    } else {
      row_.assign(static_cast<std::size_t>(count), fullCoverage);
      blendRow(x, y, row_);
    }
  }

  // What of it is on the canvas.
  void blendRow(int x, int y, std::span<const Coverage> row) {
    const int begin = std::max(x, 0);
    const int end = std::min(x + static_cast<int>(row.size()), width_);
    if (y >= 0 && y < height_ && begin < end) {
      const auto visible =
          row.subspan(static_cast<std::size_t>(begin - x), static_cast<std::size_t>(end - begin));
      canvas_.blend(begin, y, clips_.applied(begin, y, visible));
    }
  }

  const DisplayList& list_;
  ui::Appearance appearance_;
  PaintCache& cache_;
  Canvas& canvas_;
  Background background_;
  int width_;
  int height_;
  ClipMask clips_;             // of the item being painted
  std::vector<Coverage> row_;  // being painted
};

}  // namespace

void paint(const DisplayList& list, ui::Appearance appearance, PaintCache& cache, Canvas& canvas) {
  Painter(list, appearance, cache, canvas).paint();
}

}  // namespace quillpad::drawing
