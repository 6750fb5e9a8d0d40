// A widget's card from its view: layout, texts and glyphs in one step, ready for a writer. Belongs
// to the thread of the text engine.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/layout/LayoutTrace.h"
#include "platform/paint/DisplayList.h"
#include "platform/paint/DisplayListBuilder.h"
#include "platform/text/TextEngine.h"
#include "platform/ui/View.h"

namespace quillpad::drawing {

struct CardRequest {
  std::string kind{};
  std::string family = "systemSmall";
  Size size{158, 158};
  int scale = 2;             // device pixels per point
  bool rightToLeft = false;  // whether the card is mirrored, as right-to-left languages have it
  std::string language{};    // for example "en" or "zh-Hans"
  bool redacted = false;     // as of a placeholder: bars stand in for the texts
};

// The natural size of a named picture, in points; of none for a missing one.
using ImageSize = std::function<Size(const std::string& name)>;

// The card's display list.
DisplayList compose(
    const ui::View& view,
    const CardRequest& request,
    const ImageSize& imageSize,
    TextEngine& texts);

// A card with how its layout came about. Points into the view.
struct Inspection {
  DisplayList list;  // as compose() makes it
  LayoutTrace trace;
  std::vector<int> nodes;  // for each item of the list the node that it comes from; -1: none
};

Inspection inspect(
    const ui::View& view,
    const CardRequest& request,
    const ImageSize& imageSize,
    TextEngine& texts);

// The baselines of the text's lines.
std::vector<double> baselinesOf(const TextItem& text);

}  // namespace quillpad::drawing
