// Display lists made by hand or of views, and what their drawing takes.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "fixtures/TemporaryHome.h"
#include "platform/foundation/Bundle.h"
#include "platform/paint/Card.h"
#include "platform/paint/Pictures.h"
#include "platform/text/TextEngine.h"

namespace quillpad::drawing {

constexpr ui::Rgba white{255, 255, 255};
constexpr ui::Rgba black{0, 0, 0};
constexpr ui::Rgba green{17, 184, 38};

inline Item fill(
    Rect frame, ui::Color color, double cornerRadius = 0, std::vector<Clip> clips = {}) {
  return {Fill{frame, color, cornerRadius}, std::move(clips)};
}

// A card with a white ground and round corners, and what stands on it.
inline DisplayList card(Size size, int scale, std::vector<Item> items, double cornerRadius = 22) {
  DisplayList list{
      .kind = "Card",
      .family = "systemSmall",
      .scale = scale,
      .size = size,
      .link = {},
      .items = {}};
  list.items.push_back(fill({0, 0, size.width, size.height}, white, cornerRadius));
  for (Item& item : items) {
    list.items.push_back(std::move(item));
  }
  return list;
}

class DrawingTest : public ::testing::Test {
 protected:
  DisplayList composed(const ui::View& view, const CardRequest& request) {
    return compose(view, request, [](const std::string&) { return Size{}; }, texts_);
  }

  fixtures::TemporaryHome home_;
  Bundle bundle_{home_.path()};
  FontBook fonts_;
  TextEngine texts_{fonts_};
  Pictures pictures_{bundle_};
};

}  // namespace quillpad::drawing
