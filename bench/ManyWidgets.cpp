// The product's five widgets COPIES times over, a hundred where that is not set, as an extension to
// load the home screen with. Its timelines ask for a reload after RELOAD_SECONDS, if that is set.
#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "gateway/GatewayOrigin.h"
#include "host/Widgets.h"
#include "platform/foundation/Clock.h"
#include "platform/widgets/WidgetBundle.h"

using namespace quillpad;

namespace {

widgets::WidgetConfiguration withReload(
    widgets::WidgetConfiguration widget, std::chrono::seconds reload) {
  auto timeline = std::move(widget.timeline);
  widget.timeline = [timeline, reload](
                        const widgets::TimelineProviderContext& context,
                        widgets::Completion<channel::Timeline> completion) {
    timeline(
        context,
        widgets::Completion<channel::Timeline>(
            [reload, completion = std::move(completion)](auto fetched) mutable {
              if (fetched) {
                fetched->policy.after = currentDate() + reload;
                completion(*std::move(fetched));
              }
            }));
  };
  return widget;
}

struct ManyWidgets {
  std::vector<widgets::WidgetConfiguration> body() const {
    const char* reload = std::getenv("RELOAD_SECONDS");
    const char* copies = std::getenv("COPIES");
    const int count = copies == nullptr ? 100 : std::atoi(copies);
    std::vector<widgets::WidgetConfiguration> many;
    for (int copy = 0; copy < count; ++copy) {
      for (widgets::WidgetConfiguration widget : quillpad::Widgets().body()) {
        widget.kind += copy == 0 ? "" : std::to_string(copy);
        many.push_back(
            reload == nullptr
                ? std::move(widget)
                : withReload(std::move(widget), std::chrono::seconds(std::atoi(reload))));
      }
    }
    return many;
  }
};

}  // namespace

int main() {
  return widgets::main(
      ManyWidgets(), {.origins = {std::string(gatewayOrigin())}, .linkSchemes = {"quillpad"}});
}
