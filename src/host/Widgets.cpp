#include "host/Widgets.h"

#include "host/Providers.h"
#include "views/EntryViews.h"

namespace quillpad {
namespace {

using enum ui::WidgetFamily;
using widgets::StaticConfiguration;
using widgets::WidgetConfiguration;

// The content of a widget: its entry view, made of an entry and its environment.
template <class EntryView>
constexpr auto showing =
    [](const ui::Environment& environment, const decltype(EntryView::entry)& entry) {
      return EntryView{environment.widgetFamily, entry};
    };

}  // namespace

WidgetConfiguration SalesSmallWidget::body() const {
  return StaticConfiguration(kind, SalesSmallProvider(), showing<SalesSmallEntryView>)
      .configurationDisplayName("Sales of this month")
      .description("Track all monthly sales in real-time and easily monitor cash flow status.")
      .supportedFamilies({systemSmall});
}

WidgetConfiguration UnpaidSmallWidget::body() const {
  return StaticConfiguration(kind, UnpaidSmallProvider(), showing<UnpaidSmallEntryView>)
      .configurationDisplayName("Unpaid Invocies")
      .description("Unpaid invoices from customers can be easily tracked.")
      .supportedFamilies({systemSmall});
}

WidgetConfiguration PendingSmallWidget::body() const {
  return StaticConfiguration(kind, PendingSmallProvider(), showing<PendingSmallEntryView>)
      .configurationDisplayName("Pending Estimates")
      .description("You can easily keep track of your pending estimates.")
      .supportedFamilies({systemSmall});
}

WidgetConfiguration UnpaidMediumWidget::body() const {
  return StaticConfiguration(kind, UnpaidMediumProvider(), showing<UnpaidMediumEntryView>)
      .configurationDisplayName("Unpaid Invocies")
      .description("Unpaid invoices from customers can be easily tracked.")
      .supportedFamilies({systemMedium});
}

WidgetConfiguration PendingMediumWidget::body() const {
  return StaticConfiguration(kind, PendingMediumProvider(), showing<PendingMediumEntryView>)
      .configurationDisplayName("Pending Estimates")
      .description("You can easily keep track of your pending estimates.")
      .supportedFamilies({systemMedium});
}

std::vector<WidgetConfiguration> Widgets::body() const {
  return {
      SalesSmallWidget().body(),
      PendingSmallWidget().body(),
      UnpaidSmallWidget().body(),
      PendingMediumWidget().body(),
      UnpaidMediumWidget().body()};
}

}  // namespace quillpad
