#include "views/Badge.h"

namespace quillpad {

ui::View Badge::body() const {
  using namespace ui;
  // At its natural size in a box that is 20 points whatever is offered: a larger picture stands out
  // of the box and is cut off by the disc.
  constexpr FlexibleFrame box{
      .minWidth = 20,
      .idealWidth = 20,
      .maxWidth = 20,
      .minHeight = 20,
      .idealHeight = 20,
      .maxHeight = 20};
  return VStack(Image(picture).frame(box))
      .frame({.width = 32, .height = 32})
      .background(color)
      .clipShape({.cornerRadius = 16});
}

}  // namespace quillpad
