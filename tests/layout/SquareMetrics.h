// Measures for layout tests: every character is a square as wide as the font size, and a line is as
// high; one device pixel per point. Texts wrap anywhere.
#pragma once

#include <algorithm>
#include <cmath>
#include <string>

#include "platform/layout/Layout.h"

namespace quillpad::drawing {

class SquareMetrics : public Metrics {
 public:
  Size textSize(const ui::Text& text, Size proposed) override {
    ++measured;
    const double side = text.textFont.size;
    const auto count = static_cast<double>(text.text.size());
    const double perLine = std::clamp(std::floor(proposed.width / side), 1.0, std::max(count, 1.0));
    const double needed = std::ceil(count / perLine);
    const double lines = std::min(needed, std::max(std::floor(proposed.height / side), 1.0));
    return {std::min(count, perLine) * side, lines * side};
  }

  Size imageSize(const std::string& name) override {
    return name == "missing" ? Size{} : Size{24, 12};
  }

  double scale() const override { return 1; }

  int measured = 0;  // how often a text was
};

inline ui::Text text(std::string characters, double size = 10) {
  return ui::Text::verbatim(std::move(characters)).font({size, ui::Weight::regular});
}

// A view that takes exactly so much.
inline ui::View box(double width, double height) {
  return ui::Rectangle(ui::blackColor).frame(ui::Frame{.width = width, .height = height});
}

}  // namespace quillpad::drawing
