#include "platform/ui/View.h"

#include <iterator>

namespace quillpad::ui {
namespace {

template <class T>
View modified(View view, T modifier) {
  view.modifiers.emplace_back(std::in_place_type<T>, std::move(modifier));
  return view;
}

}  // namespace

Text Text::verbatim(std::string text) {
  Text view(std::move(text));
  view.localized = false;
  return view;
}

Text Text::font(Font value) && {
  textFont = value;
  return std::move(*this);
}

Text Text::foregroundColor(Color value) && {
  color = value;
  return std::move(*this);
}

View::View(Text text) : content(std::move(text)) {}
View::View(Image image) : content(std::move(image)) {}
View::View(Rectangle rectangle) : content(rectangle) {}
View::View(Spacer spacer) : content(spacer) {}
View::View(Stack stack) : content(std::move(stack)) {}

View::View(const View& other) = default;
View::View(View&& other) noexcept = default;
View& View::operator=(const View& other) = default;
View& View::operator=(View&& other) noexcept = default;
View::~View() = default;

void detail::append(std::vector<View>& children, View child) {
  children.push_back(std::move(child));
}

void detail::append(std::vector<View>& children, Group group) {
  children.insert(
      children.end(),
      std::make_move_iterator(group.views.begin()),
      std::make_move_iterator(group.views.end()));
}

template <class Self>
View Modifiable<Self>::padding(EdgeInsets insets) && {
  return modified(std::move(static_cast<Self&>(*this)), Padding{insets});
}

template <class Self>
View Modifiable<Self>::padding(double length) && {
  return std::move(*this).padding(EdgeInsets{length, length, length, length});
}

template <class Self>
View Modifiable<Self>::frame(Frame frame) && {
  return modified(std::move(static_cast<Self&>(*this)), frame);
}

template <class Self>
View Modifiable<Self>::frame(FlexibleFrame frame) && {
  return modified(std::move(static_cast<Self&>(*this)), frame);
}

template <class Self>
View Modifiable<Self>::background(Color color) && {
  return modified(std::move(static_cast<Self&>(*this)), Background{color});
}

template <class Self>
View Modifiable<Self>::clipShape(ClipShape shape) && {
  return modified(std::move(static_cast<Self&>(*this)), shape);
}

template <class Self>
View Modifiable<Self>::widgetURL(const std::optional<URL>& url) && {
  View view = std::move(static_cast<Self&>(*this));
  return url ? modified(std::move(view), WidgetUrl{url->absoluteString()}) : view;
}

template struct Modifiable<Text>;
template struct Modifiable<Image>;
template struct Modifiable<Rectangle>;
template struct Modifiable<Spacer>;
template struct Modifiable<View>;

}  // namespace quillpad::ui
