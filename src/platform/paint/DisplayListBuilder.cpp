#include "platform/paint/DisplayListBuilder.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <utility>

#include "platform/text/SystemFont.h"

namespace quillpad::drawing {
namespace {

constexpr ui::Color primaryTextColor{ui::blackColor, ui::whiteColor};
constexpr ui::Color cardColor{ui::whiteColor, {28, 28, 30}};
constexpr double cardCornerRadius = 22;

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

// The colour of the bars in place of a text.
ui::Color faint(ui::Color color) {
  constexpr int part = 5;
  color.light.alpha = static_cast<std::uint8_t>(color.light.alpha / part);
  color.dark.alpha = static_cast<std::uint8_t>(color.dark.alpha / part);
  return color;
}

class Builder {
 public:
  Builder(const Layout& layout, Size card, bool redacted, const TextPlace& place, TextEngine& texts)
      : layout_(layout),
        card_{{0, 0, card.width, card.height}, cardCornerRadius},
        redacted_(redacted),
        place_(place),
        texts_(texts) {
    items_.reserve(layout.items.size() + 1);
    items_.push_back({Fill{card_.frame, cardColor, cardCornerRadius}, {}});
  }

  void add(const PlacedItem& placed) {
    clip_ = placed.clip;
    const Rect frame = onPixels(placed.frame, place_.scale);
    std::visit([&](const auto& content) { add(content, frame); }, placed.content);
  }

  std::size_t count() const { return items_.size(); }
  std::vector<Item> take() { return std::move(items_); }

 private:
  void add(const ui::Color& color, const Rect& frame) { append(Fill{frame, color, 0}); }

  void add(const ui::Image* image, const Rect& frame) {
    if (!redacted_) {
      append(ImageItem{image->name, frame});
    }
  }

  void add(const ui::Text* text, const Rect& frame) {
    const ui::Color color = text->color.value_or(primaryTextColor);
    if (redacted_) {
      addBars(*text, frame, faint(color));
      return;
    }
    TextEngine::Setting setting = texts_.set(*text, place_, frame);
    append(TextItem{
        .text = std::move(setting.text),
        .frame = frame,
        .font = text->textFont,
        .color = color,
        .runs = std::move(setting.runs)});
  }

  // A bar for each line of the text, as wide as the text, with a little room between lines.
  void addBars(const ui::Text& text, const Rect& frame, const ui::Color& color) {
    constexpr double room = 1;
    if (frame.width <= 0) {
      return;
    }
    const double lines =
        std::max(std::round(frame.height / systemLineHeight(text.textFont.size)), 1.0);
    const double height = frame.height / lines;
    for (int line = 0; line < lines; ++line) {
      const Rect bar{frame.x, frame.y + line * height + room, frame.width, height - 2 * room};
      append(Fill{onPixels(bar, place_.scale), color, bar.height / 4});
    }
  }

  template <class Content>
  void append(Content content) {
    const Rect frame = content.frame;
    std::vector<Clip> clips;
    for (int i = clip_; i >= 0; i = layout_.clips[static_cast<std::size_t>(i)].outer) {
      const PlacedClip& placed = layout_.clips[static_cast<std::size_t>(i)];
      const Clip clip{onPixels(placed.frame, place_.scale), placed.cornerRadius};
      if constexpr (std::is_same_v<Content, Fill>) {
        // A fill that fills its clip takes the clip's corners instead.
        if (content.cornerRadius == 0 && clip.frame == frame) {
          content.cornerRadius = clip.cornerRadius;
          continue;
        }
      }
      if (!contains(clip, frame)) {
        clips.push_back(clip);
      }
    }
    if (!contains(card_, frame)) {
      clips.push_back(card_);
    }
    items_.push_back({std::move(content), std::move(clips)});
  }

  const Layout& layout_;
  Clip card_;
  bool redacted_;
  const TextPlace& place_;
  TextEngine& texts_;
  int clip_ = -1;  // of the item being added
  std::vector<Item> items_;
};

}  // namespace

std::vector<Item> itemsOf(
    const Layout& layout, Size card, bool redacted, const TextPlace& place, TextEngine& texts) {
  Builder builder(layout, card, redacted, place, texts);
  for (const PlacedItem& placed : layout.items) {
    builder.add(placed);
  }
  return builder.take();
}

TracedItems tracedItemsOf(
    const Layout& layout, Size card, bool redacted, const TextPlace& place, TextEngine& texts) {
  Builder builder(layout, card, redacted, place, texts);
  std::vector<int> placed(builder.count(), -1);
  for (std::size_t i = 0; i < layout.items.size(); ++i) {
    builder.add(layout.items[i]);
    placed.resize(builder.count(), static_cast<int>(i));
  }
  return {builder.take(), std::move(placed)};
}

}  // namespace quillpad::drawing
