#include "platform/paint/Card.h"

#include <utility>

#include "platform/layout/Layout.h"
#include "platform/paint/DisplayListBuilder.h"
#include "platform/text/SystemFont.h"

namespace quillpad::drawing {
namespace {

class CardMetrics final : public Metrics {
 public:
  CardMetrics(TextEngine& texts, const TextPlace& place, const ImageSize& imageSize)
      : texts_(texts), place_(place), imageSize_(imageSize) {}

  Size textSize(const ui::Text& text, Size proposed) override {
    return texts_.measure(text, place_, proposed);
  }

  Size imageSize(const std::string& name) override { return imageSize_(name); }

  double scale() const override { return place_.scale; }

 private:
  TextEngine& texts_;
  const TextPlace& place_;
  const ImageSize& imageSize_;
};

TextPlace placeOf(const CardRequest& request) {
  return {request.language, request.rightToLeft, static_cast<double>(request.scale)};
}

LayoutDirection directionOf(const CardRequest& request) {
  return request.rightToLeft ? LayoutDirection::rightToLeft : LayoutDirection::leftToRight;
}

DisplayList listOf(const CardRequest& request, const Layout& layout, std::vector<Item> items) {
  return {
      .kind = request.kind,
      .family = request.family,
      .scale = request.scale,
      .size = request.size,
      .link = layout.link == nullptr ? std::nullopt : std::optional(*layout.link),
      .items = std::move(items)};
}

}  // namespace

DisplayList compose(
    const ui::View& view,
    const CardRequest& request,
    const ImageSize& imageSize,
    TextEngine& texts) {
  const TextPlace place = placeOf(request);
  CardMetrics metrics(texts, place, imageSize);
  const Layout layout = layOut(view, request.size, directionOf(request), metrics);
  return listOf(request, layout, itemsOf(layout, request.size, request.redacted, place, texts));
}

Inspection inspect(
    const ui::View& view,
    const CardRequest& request,
    const ImageSize& imageSize,
    TextEngine& texts) {
  const TextPlace place = placeOf(request);
  CardMetrics metrics(texts, place, imageSize);
  LayoutTrace trace = traceLayout(view, request.size, directionOf(request), metrics);
  auto [items, placed] = tracedItemsOf(trace.layout, request.size, request.redacted, place, texts);
  std::vector<int> nodes;
  nodes.reserve(placed.size());
  for (const int each : placed) {
    nodes.push_back(each < 0 ? -1 : trace.itemNodes[static_cast<std::size_t>(each)]);
  }
  DisplayList list = listOf(request, trace.layout, std::move(items));
  return {std::move(list), std::move(trace), std::move(nodes)};
}

std::vector<double> baselinesOf(const TextItem& text) {
  std::vector<double> baselines;
  for (const GlyphRun& run : text.runs) {
    for (const Glyph& glyph : run.glyphs) {
      // A new line; marks stand a little above or below their own.
      if (baselines.empty() || glyph.origin.y > baselines.back() + systemLineHeight(run.size) / 2) {
        baselines.push_back(glyph.origin.y);
      }
    }
  }
  return baselines;
}

}  // namespace quillpad::drawing
