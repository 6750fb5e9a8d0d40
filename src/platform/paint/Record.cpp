#include "platform/paint/Record.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillpad::drawing {
namespace {

constexpr ui::Color primaryTextColor{ui::blackColor, ui::whiteColor};

// Halves go up, also where arithmetic fell a little short of them.
double nearestPixel(double length, double scale) {
  constexpr double tolerance = 1e-6;
  return std::floor(length * scale + 0.5 + tolerance) / scale;
}

double wholePixels(double length, double scale) {
  return length > 0 ? std::max(nearestPixel(length, scale), 1 / scale) : 0;
}

Rect onPixels(const Rect& frame, double scale) {
  return {
      nearestPixel(frame.x, scale),
      nearestPixel(frame.y, scale),
      wholePixels(frame.width, scale),
      wholePixels(frame.height, scale)};
}

bool contains(const Clip& clip, double x, double y) {
  const Rect& frame = clip.frame;
  if (x < frame.x || y < frame.y || x > frame.x + frame.width || y > frame.y + frame.height) {
    return false;
  }
  const double radius = std::min({clip.cornerRadius, frame.width / 2, frame.height / 2});
  const double dx = std::max({frame.x + radius - x, x - (frame.x + frame.width - radius), 0.0});
  const double dy = std::max({frame.y + radius - y, y - (frame.y + frame.height - radius), 0.0});
  return dx * dx + dy * dy <= radius * radius;
}

bool contains(const Clip& clip, const Rect& frame) {
  const double right = frame.x + frame.width;
  const double bottom = frame.y + frame.height;
  return contains(clip, frame.x, frame.y) && contains(clip, right, frame.y) &&
         contains(clip, frame.x, bottom) && contains(clip, right, bottom);
}

class Recorder {
 public:
  Recorder(const Layout& layout, const Clip& ground, const TextPlace& place, TextEngine& texts)
      : layout_(layout), ground_(ground), place_(place), texts_(texts) {}

  Item item(const PlacedItem& placed) {
    const Rect frame = onPixels(placed.frame, place_.scale);
    Item item;
    if (const auto* text = std::get_if<const ui::Text*>(&placed.content)) {
      item.content = textItem(**text, frame);
    } else if (const auto* image = std::get_if<const ui::Image*>(&placed.content)) {
      item.content = ImageItem{(*image)->name, frame};
    } else {
      const auto& color = std::get<ui::Color>(placed.content);
      item.content = Fill{frame, color, 0};
    }
    clip(item, frame, placed.clip);
    return item;
  }

 private:
  TextItem textItem(const ui::Text& text, const Rect& frame) {
    TextEngine::Setting setting = texts_.set(text, place_, frame);
    return {
        .text = std::move(setting.text),
        .frame = frame,
        .font = text.textFont,
        .color = text.color.value_or(primaryTextColor),
        .runs = std::move(setting.runs)};
  }

  void clip(Item& item, const Rect& frame, int innermost) {
    for (int i = innermost; i >= 0; i = layout_.clips[static_cast<std::size_t>(i)].outer) {
      const PlacedClip& placed = layout_.clips[static_cast<std::size_t>(i)];
      const Clip clip{onPixels(placed.frame, place_.scale), placed.cornerRadius};
      Fill* fill = std::get_if<Fill>(&item.content);
      if (fill != nullptr && fill->cornerRadius == 0 && clip.frame == frame) {
        fill->cornerRadius = clip.cornerRadius;
      } else if (!contains(clip, frame)) {
        item.clips.push_back(clip);
      }
    }
    if (!contains(ground_, frame)) {
      item.clips.push_back(ground_);
    }
  }

  const Layout& layout_;
  Clip ground_;
  const TextPlace& place_;
  TextEngine& texts_;
};

}  // namespace

void record(
    const Layout& layout,
    const Ground& ground,
    const TextPlace& place,
    TextEngine& texts,
    DisplayList& list) {
  const Clip card{{0, 0, list.size.width, list.size.height}, ground.cornerRadius};
  list.items.reserve(list.items.size() + layout.items.size() + 1);
  list.items.push_back({Fill{card.frame, ground.color, ground.cornerRadius}, {}});
  Recorder recorder(layout, card, place, texts);
  for (const PlacedItem& placed : layout.items) {
    list.items.push_back(recorder.item(placed));
  }
}

}  // namespace quillpad::drawing
