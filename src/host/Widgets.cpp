#include "host/Widgets.h"

#include "host/PendingMediumWidget.h"
#include "host/PendingSmallWidget.h"
#include "host/SalesSmallWidget.h"
#include "host/UnpaidMediumWidget.h"
#include "host/UnpaidSmallWidget.h"

namespace quillpad {

std::vector<widgets::WidgetConfiguration> Widgets::body() const {
  return {
      SalesSmallWidget().body(),
      PendingSmallWidget().body(),
      UnpaidSmallWidget().body(),
      PendingMediumWidget().body(),
      UnpaidMediumWidget().body()};
}

}  // namespace quillpad
