#include "views/ImageViews.h"

#include "views/Palette.h"

namespace quillpad {
namespace {

ui::View badge(std::string picture, ui::Color color) {
  using namespace ui;
  // At its natural size in a box that is 20 points whatever is offered: a larger picture overflows
  // the box and is clipped by the disc.
  constexpr FlexibleFrame box{
      .minWidth = 20,
      .idealWidth = 20,
      .maxWidth = 20,
      .minHeight = 20,
      .idealHeight = 20,
      .maxHeight = 20};
  return VStack(Image(std::move(picture)).frame(box))
      .frame({.width = 32, .height = 32})
      .background(color)
      .clipShape({.cornerRadius = 16});
}

}  // namespace

ui::View SalesImageView::body() const { return badge("Graph", salesAccent); }
ui::View UnpaidImageView::body() const { return badge("UnpaidSmall", unpaidAccent); }
ui::View PendingImageView::body() const { return badge("PendingSmall", pendingAccent); }

}  // namespace quillpad
