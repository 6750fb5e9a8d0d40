#include "host/UnpaidMediumWidget.h"

#include "host/UnpaidMediumProvider.h"
#include "views/UnpaidMediumEntryView.h"

namespace quillpad {

widgets::WidgetConfiguration UnpaidMediumWidget::body() const {
  return widgets::StaticConfiguration(
             kind,
             UnpaidMediumProvider(),
             [](const ui::Environment& environment, const UnpaidMediumEntry& entry) {
               return UnpaidMediumEntryView{environment.widgetFamily, entry};
             })
      .configurationDisplayName("Unpaid Invocies")
      .description("Unpaid invoices from customers can be easily tracked.")
      .supportedFamilies({ui::WidgetFamily::systemMedium});
}

}  // namespace quillpad
