#include "platform/paint/Card.h"

#include "platform/layout/Layout.h"
#include "platform/paint/DisplayListBuilder.h"

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

}  // namespace

DisplayList compose(
    const ui::View& view,
    const CardRequest& request,
    const ImageSize& imageSize,
    TextEngine& texts) {
  const TextPlace place{request.language, request.rightToLeft, static_cast<double>(request.scale)};
  CardMetrics metrics(texts, place, imageSize);
  const auto direction =
      request.rightToLeft ? LayoutDirection::rightToLeft : LayoutDirection::leftToRight;
  const Layout layout = layOut(view, request.size, direction, metrics);

  return {
      .kind = request.kind,
      .family = request.family,
      .scale = request.scale,
      .size = request.size,
      .link = layout.link == nullptr ? std::nullopt : std::optional(*layout.link),
      .items = itemsOf(layout, request.size, request.redaction, place, texts)};
}

}  // namespace quillpad::drawing
