#include "host/PendingMediumWidget.h"

#include "host/PendingMediumProvider.h"
#include "views/PendingMediumEntryView.h"

namespace quillpad {

widgets::WidgetConfiguration PendingMediumWidget::body() const {
  return widgets::StaticConfiguration(
             kind,
             PendingMediumProvider(),
             [](const ui::Environment& environment, const PendingMediumEntry& entry) {
               return PendingMediumEntryView{environment.widgetFamily, entry};
             })
      .configurationDisplayName("Pending Estimates")
      .description("You can easily keep track of your pending estimates.")
      .supportedFamilies({ui::WidgetFamily::systemMedium});
}

}  // namespace quillpad
