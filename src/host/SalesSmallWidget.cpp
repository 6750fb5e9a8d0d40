#include "host/SalesSmallWidget.h"

#include "host/SalesSmallProvider.h"
#include "views/SalesSmallEntryView.h"

namespace quillpad {

widgets::WidgetConfiguration SalesSmallWidget::body() const {
  return widgets::StaticConfiguration(
             kind,
             SalesSmallProvider(),
             [](const ui::Environment& environment, const SalesSmallEntry& entry) {
               return SalesSmallEntryView{environment.widgetFamily, entry};
             })
      .configurationDisplayName("Sales of this month")
      .description("Track all monthly sales in real-time and easily monitor cash flow status.")
      .supportedFamilies({ui::WidgetFamily::systemSmall});
}

}  // namespace quillpad
