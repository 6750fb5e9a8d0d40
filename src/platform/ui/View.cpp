#include "platform/ui/View.h"

#include <iterator>

namespace quillpad::ui {

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

void detail::append(std::vector<View>& children, Group group) {
  children.insert(
      children.end(),
      std::make_move_iterator(group.views.begin()),
      std::make_move_iterator(group.views.end()));
}

}  // namespace quillpad::ui
