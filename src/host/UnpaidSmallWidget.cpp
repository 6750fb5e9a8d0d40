#include "host/UnpaidSmallWidget.h"

#include "host/UnpaidSmallProvider.h"
#include "views/UnpaidSmallEntryView.h"

namespace quillpad {

widgets::WidgetConfiguration UnpaidSmallWidget::body() const {
  return widgets::StaticConfiguration(
             kind,
             UnpaidSmallProvider(),
             [](const ui::Environment& environment, const UnpaidSmallEntry& entry) {
               return UnpaidSmallEntryView{environment.widgetFamily, entry};
             })
      .configurationDisplayName("Unpaid Invocies")
      .description("Unpaid invoices from customers can be easily tracked.")
      .supportedFamilies({ui::WidgetFamily::systemSmall});
}

}  // namespace quillpad
