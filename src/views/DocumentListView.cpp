#include "views/DocumentListView.h"

#include <algorithm>
#include <span>

#include "platform/foundation/Fatal.h"
#include "views/WidgetRowView.h"

namespace quillpad {
namespace {

constexpr std::size_t mostRows = 3;

WidgetRowView row(const Value& record) {
  return {forcedAs<Dictionary>(record, "a record of the list")};
}

// Three rows are taller than the card and overflow it evenly: the inset keeps the header in sight.
// It is for exactly three records, although three rows are shown of more, too.
double headerInset(const Array& records) { return records.size() == 3 ? 20 : 0; }

}  // namespace

ui::View DocumentListView::body() const {
  using namespace ui;
  using enum Weight;
  const auto shown = std::span(records).first(std::min(records.size(), mostRows));
  return VStack(
             HStack(Text(title).font({17, semibold}).foregroundColor(accent), Spacer())
                 .padding({.top = headerInset(records)}),
             ForEach(shown, row),
             Spacer(),
             Spacer())
      .padding(16)
      .widgetURL(URL::parse(linkUrl));
}

}  // namespace quillpad
