#include "host/PendingSmallWidget.h"

#include "host/PendingSmallProvider.h"
#include "views/PendingSmallEntryView.h"

namespace quillpad {

widgets::WidgetConfiguration PendingSmallWidget::body() const {
  return widgets::StaticConfiguration(
             kind,
             PendingSmallProvider(),
             [](const ui::Environment& environment, const PendingSmallEntry& entry) {
               return PendingSmallEntryView{environment.widgetFamily, entry};
             })
      .configurationDisplayName("Pending Estimates")
      .description("You can easily keep track of your pending estimates.")
      .supportedFamilies({ui::WidgetFamily::systemSmall});
}

}  // namespace quillpad
