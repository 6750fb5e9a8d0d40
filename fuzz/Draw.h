// A view as every kind of picture, within what drawing allows.
#pragma once

#include "Target.h"
#include "platform/foundation/Bundle.h"
#include "platform/paint/Card.h"
#include "platform/paint/PngReader.h"
#include "platform/paint/PngWriter.h"
#include "platform/paint/SvgWriter.h"
#include "platform/text/TextEngine.h"

namespace quillpad {

class Drawer {
 public:
  void draw(const ui::View& view, const drawing::CardRequest& request) {
    const auto list = drawing::compose(
        view, request, [this](const auto& name) { return pictures_.naturalSize(name); }, texts_);
    const auto refusal = drawing::drawingError(list);
    const auto svg = drawing::writeSvg(list, std::nullopt, fonts_, pictures_, "card");
    expect(!svg || !refusal);
    const auto png = png_.write(list, ui::Appearance::dark);
    expect(png.has_value() == !refusal);
    expect(!png || drawing::readPng(*png).has_value());
  }

 private:
  drawing::FontBook fonts_;
  drawing::TextEngine texts_{fonts_};
  drawing::Pictures pictures_{Bundle::main()};
  drawing::PngWriter png_{fonts_, pictures_};
};

}  // namespace quillpad
