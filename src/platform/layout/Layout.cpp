// The layout follows the phone's, as far as the contents and modifiers of ui::View ask for it. It
// leaves out or settles:
//   - Nothing here proposes "as you like", so ideal lengths are never asked for.
//   - Every padding makes all four edges ordinary ones for the gaps beside them, one of 0 too.
//   - A frame's own edges are ordinary where it fixes or bounds a dimension.
//   - A stack does not run again for a child that is larger across than was proposed.
//   - Below `deepestExactStack` nested stacks a child's flexibility is measured once, at the first
//     length across that it is asked for, and not anew for each: nesting would make the time grow
//     exponentially otherwise.
#include "platform/layout/Layout.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>

#include "platform/text/SystemFont.h"

namespace quillpad::drawing {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double shortestSpacer = 8;
constexpr double ordinaryGap = 8;
constexpr int deepestExactStack = 6;

// The gap between two neighbours is the largest of what both ask for in one category, else of what
// either asks for in general, else the ordinary one.
enum Category : std::size_t { textBesideText, aboveText, belowText, anything, categoryCount };

struct Edge {
  static constexpr double absent = -1;
  std::array<double, categoryCount> gaps{absent, absent, absent, absent};
};

Edge merged(const Edge& one, const Edge& other) {
  Edge result;
  for (std::size_t i = 0; i < categoryCount; ++i) {
    result.gaps[i] = std::max(one.gaps[i], other.gaps[i]);
  }
  return result;
}

double gapBetween(const Edge& end, const Edge& start) {
  double gap = Edge::absent;
  for (std::size_t i = 0; i < anything; ++i) {
    if (end.gaps[i] >= 0 && start.gaps[i] >= 0) {
      gap = std::max({gap, end.gaps[i], start.gaps[i]});
    }
  }
  if (gap < 0) {
    gap = std::max(end.gaps[anything], start.gaps[anything]);
  }
  return gap < 0 ? ordinaryGap : gap;
}

// What a view wants between itself and its neighbours.
struct Spacing {
  Edge top, bottom, leading, trailing;

  static Spacing ordinary() {
    Spacing spacing;
    spacing.resetVertical();
    return spacing;
  }

  static Spacing text(const ui::Font& font, double scale) {
    const double lineHeight = systemLineHeight(font.size);
    const double extra = roundedUpToPixel(lineHeight * 0.1, scale);
    Spacing spacing;
    spacing.top.gaps[textBesideText] = 0;
    spacing.bottom.gaps[textBesideText] = 0;
    spacing.top.gaps[aboveText] = lineHeight + extra - systemAscender * font.size;
    spacing.bottom.gaps[belowText] = std::max(
        lineHeight + extra - systemCapHeight * font.size, extra + systemDescender * font.size);
    return spacing;
  }

  static Spacing spacer(ui::Axis axis) {
    Spacing spacing;
    spacing.start(axis).gaps[anything] = 0;
    spacing.end(axis).gaps[anything] = 0;
    return spacing;
  }

  void resetVertical() {
    top = {};
    bottom = {};
    top.gaps[belowText] = 0;
    bottom.gaps[aboveText] = 0;
  }

  void resetHorizontal() {
    leading = {};
    trailing = {};
  }

  Edge& start(ui::Axis axis) { return axis == ui::Axis::vertical ? top : leading; }
  Edge& end(ui::Axis axis) { return axis == ui::Axis::vertical ? bottom : trailing; }
};

// A size by axis: `along` the stack and `across` it.
double along(ui::Axis axis, Size size) {
  return axis == ui::Axis::vertical ? size.height : size.width;
}

double across(ui::Axis axis, Size size) {
  return axis == ui::Axis::vertical ? size.width : size.height;
}

Size sizeAlong(ui::Axis axis, double along, double across) {
  return axis == ui::Axis::vertical ? Size{across, along} : Size{along, across};
}

// A length of a frame, where it is one.
std::optional<double> usable(std::optional<double> length) {
  return length && *length >= 0 && std::isfinite(*length) ? length : std::nullopt;
}

// The bounds of one dimension of a flexible frame; a missing one does not bind.
struct Bounds {
  Bounds(std::optional<double> minimum, std::optional<double> maximum)
      : least(usable(minimum)), most(maximum && *maximum >= 0 ? maximum : std::nullopt) {}

  bool any() const { return least || most; }
  bool both() const { return least && most; }

  double clamp(double proposed) const {
    return std::max(std::min(proposed, most.value_or(infinity)), least.value_or(0));
  }

  // The frame's length when its content took `content` of the clamped proposal.
  double answer(double proposed, double content) const {
    const double clamped = clamp(proposed);
    if (both()) {
      return clamped;
    }
    if (least) {
      return std::max(std::min(clamped, content), *least);
    }
    if (most) {
      return std::min(std::max(clamped, content), *most);
    }
    return content;
  }

  std::optional<double> least, most;
};

using Part = std::variant<
    const ui::Text*,
    const ui::Image*,
    const ui::Rectangle*,
    const ui::Spacer*,
    const ui::Stack*,
    const ui::Padding*,
    const ui::Frame*,
    const ui::FlexibleFrame*,
    const ui::Background*,
    const ui::ClipShape*>;

constexpr std::size_t nobody = std::numeric_limits<std::size_t>::max();

// A content or a modifier. A modifier has one child: what it modifies.
struct Node {
  Part part;
  std::size_t firstChild = nobody;
  std::size_t nextSibling = nobody;
  double gapBefore = 0;                // to the sibling before it
  bool isSpacer = false;               // a spacer, whatever its modifiers
  ui::Axis axis = ui::Axis::vertical;  // of the stack around it
  int stacksAround = 0;
  std::optional<double> flexibility{};  // once known for good

  // The answers so far: the same few proposals come again and again.
  struct Answer {
    Size proposed, size;
  };
  std::array<Answer, 4> answers{};
  std::size_t answerCount = 0;
  std::vector<Answer> furtherAnswers{};
};

class Arranger {
 public:
  Arranger(Metrics& metrics, Size card, LayoutDirection direction)
      : metrics_(metrics), card_(card), mirrored_(direction == LayoutDirection::rightToLeft) {}

  Layout arrange(const ui::View& view) {
    nodes_.reserve(64);
    children_.reserve(16);
    order_.reserve(16);
    add(view, view.modifiers.size(), ui::Axis::vertical, 0);
    const Size size = measure(0, card_);
    place(0, card_, {(card_.width - size.width) / 2, (card_.height - size.height) / 2}, size);
    return std::move(layout_);
  }

 private:
  // A child of the stack that is being measured.
  struct Child {
    std::size_t node = nobody;
    double flexibility = 0;
    Size proposed{}, size{};
  };

  struct Added {
    std::size_t node = nobody;
    Spacing spacing;
  };

  // Adds the view with the innermost `modifiers` of its modifiers, and all below it.
  Added add(const ui::View& view, std::size_t modifiers, ui::Axis axis, int stacksAround);
  Spacing addChildren(std::size_t stack, const ui::Stack& content, int stacksAround);

  Size measure(std::size_t node, Size proposed);
  Size measureAnew(std::size_t node, Size proposed);
  // The children's sizes, at children_[from] and after, and the stack's own.
  Size measureChildren(std::size_t stack, ui::Axis axis, Size proposed, std::size_t from);
  // Offers the children in order_[from, end) equal shares of what is left, the least flexible
  // first.
  void serve(std::size_t from, std::size_t end, ui::Axis axis, double proposedAcross, double& left);
  double flexibility(std::size_t node, ui::Axis axis, double proposedAcross);

  void place(std::size_t node, Size proposed, Point origin, Size size);
  void placeInside(std::size_t child, Size proposed, Point origin, Size around);
  void placeChildren(std::size_t stack, ui::Axis axis, Size proposed, Point origin, Size size);

  Rect frameOf(Point origin, Size size) const {
    const double x = mirrored_ ? card_.width - origin.x - size.width : origin.x;
    return {x, origin.y, size.width, size.height};
  }

  void paint(decltype(PlacedItem::content) content, Point origin, Size size) {
    layout_.items.push_back({content, frameOf(origin, size), clip_});
  }

  Metrics& metrics_;
  Size card_;
  bool mirrored_;
  std::vector<Node> nodes_;
  std::vector<Child> children_;     // of the stacks being measured, the innermost's last
  std::vector<std::size_t> order_;  // the same children, each stack's in the order of serving
  Layout layout_;
  int clip_ = -1;
};

template <class... Visitors>
struct Overloaded : Visitors... {
  using Visitors::operator()...;
};
template <class... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

Arranger::Added Arranger::add(
    const ui::View& view, std::size_t modifiers, ui::Axis axis, int stacksAround) {
  while (modifiers > 0) {
    const auto* link = std::get_if<ui::WidgetUrl>(&view.modifiers[modifiers - 1]);
    if (link == nullptr) {
      break;
    }
    if (layout_.link == nullptr) {
      layout_.link = &link->address;
    }
    --modifiers;
  }

  const std::size_t index = nodes_.size();
  nodes_.emplace_back();
  nodes_[index].axis = axis;
  nodes_[index].stacksAround = stacksAround;
  if (modifiers == 0) {
    const Spacing spacing = std::visit(
        Overloaded{
            [&](const ui::Text& text) {
              nodes_[index].part = &text;
              return Spacing::text(text.textFont, metrics_.scale());
            },
            [&](const ui::Spacer& spacer) {
              nodes_[index].part = &spacer;
              nodes_[index].isSpacer = true;
              return Spacing::spacer(axis);
            },
            [&](const ui::Stack& stack) {
              nodes_[index].part = &stack;
              return addChildren(index, stack, stacksAround);
            },
            [&](const auto& leaf) {
              nodes_[index].part = &leaf;
              return Spacing::ordinary();
            }},
        view.content);
    return {index, spacing};
  }

  const Added content = add(view, modifiers - 1, axis, stacksAround);
  nodes_[index].firstChild = content.node;
  nodes_[index].isSpacer = nodes_[content.node].isSpacer;
  Spacing spacing = content.spacing;
  std::visit(
      Overloaded{
          [&](const ui::Padding& padding) {
            nodes_[index].part = &padding;
            spacing = Spacing::ordinary();
          },
          [&](const ui::Frame& frame) {
            nodes_[index].part = &frame;
            if (usable(frame.width)) {
              spacing.resetHorizontal();
            }
            if (usable(frame.height)) {
              spacing.resetVertical();
            }
          },
          [&](const ui::FlexibleFrame& frame) {
            nodes_[index].part = &frame;
            if (Bounds(frame.minWidth, frame.maxWidth).any()) {
              spacing.resetHorizontal();
            }
            if (Bounds(frame.minHeight, frame.maxHeight).any()) {
              spacing.resetVertical();
            }
          },
          [](const ui::WidgetUrl&) {},
          [&](const auto& painting) { nodes_[index].part = &painting; }},
      view.modifiers[modifiers - 1]);
  return {index, spacing};
}

Spacing Arranger::addChildren(std::size_t stack, const ui::Stack& content, int stacksAround) {
  if (content.children.empty()) {
    return Spacing::ordinary();
  }
  const ui::Axis axis = content.axis;
  const ui::Axis crossing = axis == ui::Axis::vertical ? ui::Axis::horizontal : ui::Axis::vertical;
  Spacing spacing;
  std::size_t last = nobody;
  for (const ui::View& view : content.children) {
    Added child = add(view, view.modifiers.size(), axis, stacksAround + 1);
    if (last == nobody) {
      nodes_[stack].firstChild = child.node;
      spacing = child.spacing;
    } else {
      nodes_[last].nextSibling = child.node;
      nodes_[child.node].gapBefore = gapBetween(spacing.end(axis), child.spacing.start(axis));
      spacing.end(axis) = child.spacing.end(axis);
      spacing.start(crossing) = merged(spacing.start(crossing), child.spacing.start(crossing));
      spacing.end(crossing) = merged(spacing.end(crossing), child.spacing.end(crossing));
    }
    last = child.node;
  }
  return spacing;
}

Size Arranger::measure(std::size_t node, Size proposed) {
  const auto asked = [&](const Node::Answer& answer) { return answer.proposed == proposed; };
  const Node& known = nodes_[node];
  const auto end = known.answers.begin() + static_cast<std::ptrdiff_t>(known.answerCount);
  if (const auto found = std::find_if(known.answers.begin(), end, asked); found != end) {
    return found->size;
  }
  const auto& further = known.furtherAnswers;
  if (const auto found = std::ranges::find_if(further, asked); found != further.end()) {
    return found->size;
  }

  const Size size = measureAnew(node, proposed);
  Node& answering = nodes_[node];
  if (answering.answerCount < answering.answers.size()) {
    answering.answers[answering.answerCount++] = {proposed, size};
  } else {
    answering.furtherAnswers.push_back({proposed, size});
  }
  return size;
}

Size paddingOf(const ui::EdgeInsets& insets) {
  return {insets.leading + insets.trailing, insets.top + insets.bottom};
}

Size insideOf(const ui::Padding& padding, Size proposed) {
  const Size outer = paddingOf(padding.insets);
  return {
      std::max(proposed.width - outer.width, 0.0), std::max(proposed.height - outer.height, 0.0)};
}

Size insideOf(const ui::Frame& frame, Size proposed) {
  return {
      usable(frame.width).value_or(proposed.width), usable(frame.height).value_or(proposed.height)};
}

Size insideOf(const ui::FlexibleFrame& frame, Size proposed) {
  return {
      Bounds(frame.minWidth, frame.maxWidth).clamp(proposed.width),
      Bounds(frame.minHeight, frame.maxHeight).clamp(proposed.height)};
}

Size Arranger::measureAnew(std::size_t node, Size proposed) {
  const std::size_t child = nodes_[node].firstChild;
  return std::visit(
      Overloaded{
          [&](const ui::Text* text) { return metrics_.textSize(*text, proposed); },
          [&](const ui::Image* image) { return metrics_.imageSize(image->name); },
          [&](const ui::Rectangle*) { return proposed; },
          [&](const ui::Spacer*) {
            const ui::Axis axis = nodes_[node].axis;
            return sizeAlong(axis, std::max(along(axis, proposed), shortestSpacer), 0);
          },
          [&](const ui::Stack* stack) {
            const std::size_t from = children_.size();
            const Size size = measureChildren(node, stack->axis, proposed, from);
            children_.resize(from);
            order_.resize(from);
            return size;
          },
          [&](const ui::Padding* padding) {
            const Size inner = measure(child, insideOf(*padding, proposed));
            const Size outer = paddingOf(padding->insets);
            return Size{
                std::max(inner.width + outer.width, 0.0),
                std::max(inner.height + outer.height, 0.0)};
          },
          [&](const ui::Frame* frame) {
            const auto width = usable(frame->width);
            const auto height = usable(frame->height);
            if (width && height) {
              return Size{*width, *height};
            }
            const Size inner = measure(child, insideOf(*frame, proposed));
            return Size{width.value_or(inner.width), height.value_or(inner.height)};
          },
          [&](const ui::FlexibleFrame* frame) {
            const Bounds width(frame->minWidth, frame->maxWidth);
            const Bounds height(frame->minHeight, frame->maxHeight);
            const Size inner =
                width.both() && height.both() ? Size{} : measure(child, insideOf(*frame, proposed));
            return Size{
                width.answer(proposed.width, inner.width),
                height.answer(proposed.height, inner.height)};
          },
          [&](const auto*) { return measure(child, proposed); }},
      nodes_[node].part);
}

double Arranger::flexibility(std::size_t node, ui::Axis axis, double proposedAcross) {
  if (const std::optional<double> known = nodes_[node].flexibility) {
    return *known;
  }
  const double most = along(axis, measure(node, sizeAlong(axis, infinity, proposedAcross)));
  const double least = along(axis, measure(node, sizeAlong(axis, 0, proposedAcross)));
  if (nodes_[node].stacksAround > deepestExactStack) {
    nodes_[node].flexibility = most - least;
  }
  return most - least;
}

Size Arranger::measureChildren(std::size_t stack, ui::Axis axis, Size proposed, std::size_t from) {
  const double proposedAcross = across(axis, proposed);
  double gaps = 0;
  for (std::size_t node = nodes_[stack].firstChild; node != nobody;
       node = nodes_[node].nextSibling) {
    gaps += nodes_[node].gapBefore;
    if (!nodes_[node].isSpacer) {
      order_.push_back(children_.size());
    }
    children_.push_back({.node = node});
  }

  // Spacers come after everything else, and what they need at least is held back for them.
  const std::size_t spacers = order_.size();
  const std::size_t end = children_.size();
  double heldBack = 0;
  for (std::size_t child = from; child < end; ++child) {
    const std::size_t node = children_[child].node;
    if (nodes_[node].isSpacer) {
      order_.push_back(child);
      heldBack += along(axis, measure(node, sizeAlong(axis, 0, proposedAcross)));
    }
  }
  double left = along(axis, proposed) - gaps - heldBack;
  serve(from, spacers, axis, proposedAcross, left);
  left += heldBack;
  serve(spacers, end, axis, proposedAcross, left);

  double length = gaps;
  double breadth = 0;
  for (std::size_t child = from; child < end; ++child) {
    length += along(axis, children_[child].size);
    breadth = std::max(breadth, across(axis, children_[child].size));
  }
  return sizeAlong(axis, length, breadth);
}

void Arranger::serve(
    std::size_t from, std::size_t end, ui::Axis axis, double proposedAcross, double& left) {
  if (end - from > 1) {
    for (std::size_t turn = from; turn < end; ++turn) {
      const std::size_t child = order_[turn];
      const double range = flexibility(children_[child].node, axis, proposedAcross);
      children_[child].flexibility = range;
    }
    const auto first = order_.begin() + static_cast<std::ptrdiff_t>(from);
    const auto last = order_.begin() + static_cast<std::ptrdiff_t>(end);
    std::sort(first, last, [&](std::size_t one, std::size_t other) {
      const double range = children_[one].flexibility;
      const double otherRange = children_[other].flexibility;
      return range != otherRange ? range < otherRange : one < other;
    });
  }
  for (std::size_t turn = from; turn < end; ++turn) {
    const std::size_t child = order_[turn];
    const double share = std::max(left / static_cast<double>(end - turn), 0.0);
    const Size offer = sizeAlong(axis, share, proposedAcross);
    const Size size = measure(children_[child].node, offer);
    children_[child].proposed = offer;
    children_[child].size = size;
    if (std::isfinite(left)) {
      left -= along(axis, size);
    }
  }
}

void Arranger::place(std::size_t node, Size proposed, Point origin, Size size) {
  const std::size_t child = nodes_[node].firstChild;
  std::visit(
      Overloaded{
          [&](const ui::Text* text) { paint(text, origin, size); },
          [&](const ui::Image* image) { paint(image, origin, size); },
          [&](const ui::Rectangle* rectangle) { paint(rectangle->color, origin, size); },
          [&](const ui::Spacer*) {},
          [&](const ui::Stack* stack) { placeChildren(node, stack->axis, proposed, origin, size); },
          [&](const ui::Padding* padding) {
            const Size inside = insideOf(*padding, proposed);
            const ui::EdgeInsets& insets = padding->insets;
            place(
                child,
                inside,
                {origin.x + insets.leading, origin.y + insets.top},
                measure(child, inside));
          },
          [&](const ui::Frame* frame) {
            placeInside(child, insideOf(*frame, proposed), origin, size);
          },
          [&](const ui::FlexibleFrame* frame) {
            placeInside(child, insideOf(*frame, proposed), origin, size);
          },
          [&](const ui::Background* background) {
            paint(background->color, origin, size);
            place(child, proposed, origin, size);
          },
          [&](const ui::ClipShape* shape) {
            const int outer = clip_;
            layout_.clips.push_back({frameOf(origin, size), shape->cornerRadius, outer});
            clip_ = static_cast<int>(layout_.clips.size()) - 1;
            place(child, proposed, origin, size);
            clip_ = outer;
          }},
      nodes_[node].part);
}

void Arranger::placeInside(std::size_t child, Size proposed, Point origin, Size around) {
  const Size size = measure(child, proposed);
  place(
      child,
      proposed,
      {origin.x + (around.width - size.width) / 2, origin.y + (around.height - size.height) / 2},
      size);
}

void Arranger::placeChildren(
    std::size_t stack, ui::Axis axis, Size proposed, Point origin, Size size) {
  const std::size_t from = children_.size();
  measureChildren(stack, axis, proposed, from);
  const std::size_t end = children_.size();
  double position = 0;
  for (std::size_t i = from; i < end; ++i) {
    const Child child = children_[i];
    position += nodes_[child.node].gapBefore;
    const double beside = (across(axis, size) - across(axis, child.size)) / 2;
    const Size offset = sizeAlong(axis, position, beside);
    place(
        child.node,
        child.proposed,
        {origin.x + offset.width, origin.y + offset.height},
        child.size);
    position += along(axis, child.size);
  }
  children_.resize(from);
  order_.resize(from);
}

}  // namespace

Layout layOut(const ui::View& view, Size size, LayoutDirection direction, Metrics& metrics) {
  return Arranger(metrics, size, direction).arrange(view);
}

}  // namespace quillpad::drawing
