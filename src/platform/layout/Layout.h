// Where the parts of a view are placed: a pure function of the view, the size it is offered and the
// measures of its texts and images. Lengths are points, not yet rounded to device pixels; those of
// the view are no longer than its codec lets through. Callable from any thread, as far as the
// metrics are.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "platform/text/Geometry.h"
#include "platform/ui/Color.h"
#include "platform/ui/View.h"

namespace quillpad::drawing {

// What layout cannot know by itself.
class Metrics {
 public:
  virtual ~Metrics() = default;

  // What the text takes when offered a size: no more than that, save one line at least. Offered its
  // answer, it answers the same.
  virtual Size textSize(const ui::Text& text, Size proposed) = 0;

  // The natural size of the picture; nothing at all for one that is missing.
  virtual Size imageSize(const std::string& name) = 0;

  // Device pixels per point, to which the gaps around texts are rounded.
  virtual double scale() const = 0;
};

// Something to paint: a text, an image or a plain colour.
using Painted = std::variant<const ui::Text*, const ui::Image*, ui::Color>;

struct PlacedItem {
  Painted content;
  Rect frame;
  int clip = -1;  // the innermost clip that masks it, by its place in Layout::clips
};

struct PlacedClip {
  Rect frame;
  double cornerRadius = 0;
  int outer = -1;  // the clip that it is itself masked by
};

// Points into the view that was laid out, which has to outlive it.
struct Layout {
  std::vector<PlacedItem> items;  // in the order painted
  std::vector<PlacedClip> clips;
  const std::string* link = nullptr;
};

enum class LayoutDirection { leftToRight, rightToLeft };

// Places the view in the middle of the size. A view that is larger overflows evenly on both sides.
Layout layOut(const ui::View& view, Size size, LayoutDirection direction, Metrics& metrics);

}  // namespace quillpad::drawing
