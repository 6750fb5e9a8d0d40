// A view: one content and the modifiers applied to it, innermost first. A plain value without
// pointers, copied like any other; it measures nothing and draws nothing, the home screen lays it
// out. Safe to read from any thread.
//
//   VStack(Text("Sales").font({17, semibold}).foregroundColor(salesAccent), Spacer()).padding(16)
#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/foundation/URL.h"
#include "platform/ui/Color.h"
#include "platform/ui/Font.h"

namespace quillpad::ui {

class View;

// Lengths are points throughout.
struct EdgeInsets {
  double top = 0;
  double leading = 0;
  double bottom = 0;
  double trailing = 0;
};

// The modifiers. A length that is absent is the content's own.
struct Padding {
  EdgeInsets insets;
};
struct Frame {
  std::optional<double> width{};
  std::optional<double> height{};
};
struct FlexibleFrame {
  std::optional<double> minWidth{}, idealWidth{}, maxWidth{};
  std::optional<double> minHeight{}, idealHeight{}, maxHeight{};
};
// A fill behind the view, of the view's own size.
struct Background {
  Color color;
};
// Masks the view to its bounds with round corners.
struct ClipShape {
  double cornerRadius = 0;
};
struct WidgetUrl {
  std::string address;
};
using Modifier = std::variant<Padding, Frame, FlexibleFrame, Background, ClipShape, WidgetUrl>;

// The modifiers that every view offers. Each consumes the view that it is called on, so that a
// chain moves one tree along and never copies it.
template <class Self>
struct Modifiable {
  View padding(double length) &&;
  View padding(EdgeInsets insets) &&;
  View frame(Frame frame) &&;
  View frame(FlexibleFrame frame) &&;
  View background(Color color) &&;
  View clipShape(ClipShape shape) &&;
  // The link that a tap anywhere on the widget opens; an absent one attaches nothing.
  View widgetURL(const std::optional<URL>& url) &&;
};

// The contents.

// A text in the system font. `Text(key)` is looked up in the bundle when the view is sent,
// `Text::verbatim` is not.
struct Text : Modifiable<Text> {
  explicit Text(std::string key) : text(std::move(key)) {}
  static Text verbatim(std::string text);

  Text font(Font value) &&;
  Text foregroundColor(Color value) &&;

  std::string text;
  bool localized = true;
  Font textFont{};
  std::optional<Color> color{};  // absent: the platform's primary text colour
};

// A named picture of the bundle, at its natural size.
struct Image : Modifiable<Image> {
  explicit Image(std::string assetName) : name(std::move(assetName)) {}
  std::string name;
};

struct Rectangle : Modifiable<Rectangle> {
  explicit Rectangle(Color fill) : color(fill) {}
  Color color;
};

// Takes what room is left along the axis of its stack, at least the platform's default of 8 points.
struct Spacer : Modifiable<Spacer> {};

enum class Axis { horizontal, vertical };

// Children one after another along the axis, centred across it, with the platform's default
// spacing.
struct Stack {
  Axis axis = Axis::vertical;
  std::vector<View> children;
};

// Views that stand for themselves: the stack that is given a group adopts them one by one.
struct Group {
  std::vector<View> views;
};

using Content = std::variant<Text, Image, Rectangle, Spacer, Stack>;

// A type with a body is a view too: the one that its body builds.
template <class T>
concept Composite = requires(const T& view) {
  { view.body() } -> std::convertible_to<View>;
};

class View : public Modifiable<View> {
 public:
  View(Text text);
  View(Image image);
  View(Rectangle rectangle);
  View(Spacer spacer);
  View(Stack stack);
  // Defined once for all who include this: compiling them is most of what a view's file costs.
  View(const View& other);
  View(View&& other) noexcept;
  View& operator=(const View& other);
  View& operator=(View&& other) noexcept;
  ~View();
  template <Composite T>
    requires(!std::same_as<T, View>)
  View(const T& composite) : View(composite.body()) {}

  Content content;
  std::vector<Modifier> modifiers;  // innermost first
};

namespace detail {

void append(std::vector<View>& children, View child);
void append(std::vector<View>& children, Group group);

template <class... Children>
View stack(Axis axis, Children&&... children) {
  Stack stack{axis, {}};
  (append(stack.children, std::forward<Children>(children)), ...);
  return stack;
}

}  // namespace detail

template <class... Children>
View VStack(Children&&... children) {
  return detail::stack(Axis::vertical, std::forward<Children>(children)...);
}

template <class... Children>
View HStack(Children&&... children) {
  return detail::stack(Axis::horizontal, std::forward<Children>(children)...);
}

// One view for each element of the range, as a group.
template <class Range, class MakeView>
Group ForEach(const Range& range, MakeView makeView) {
  Group group;
  for (const auto& element : range) {
    group.views.push_back(makeView(element));
  }
  return group;
}

}  // namespace quillpad::ui
