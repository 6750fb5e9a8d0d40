#include "views/WidgetRowView.h"

#include "support/FormattedTotal.h"
#include "views/Palette.h"

namespace quillpad {
namespace {

// Empty where the row has no name, or one that is not a text.
std::string clientName(const Dictionary& item) {
  const Value* name = item.find("clientName");
  const auto* text = name != nullptr ? name->as<std::string>() : nullptr;
  return text != nullptr ? *text : std::string();
}

}  // namespace

ui::View WidgetRowView::body() const {
  using namespace ui;
  using enum Weight;
  return VStack(
      HStack(
          Text::verbatim(clientName(item)).font({15, regular}).frame({.height = 24}),
          Spacer(),
          Text::verbatim(formattedTotal(item)).font({15, regular}).frame({.height = 24}))
          .frame({.height = 25}),
      Rectangle(separatorGrey).frame({.height = 0.5}).padding(0));
}

}  // namespace quillpad
