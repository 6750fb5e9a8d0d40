// A second extension, which has nothing to do with invoices: a clock of two families, without
// translations, whose timeline shows this minute and the next. While the variable CLOCK_STOPPED is
// set it drops its timelines and says why.
#include <cstdlib>
#include <string>
#include <vector>

#include "fixtures/TextEntry.h"
#include "platform/foundation/Activity.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Iso8601.h"
#include "platform/widgets/WidgetBundle.h"

namespace {

using namespace quillpad;
using namespace std::chrono_literals;

struct ClockProvider {
  using Entry = fixtures::TextEntry;
  using Context = widgets::TimelineProviderContext;

  static Entry entry(Date date) { return {date, {iso8601(date).substr(11, 5)}}; }

  Entry placeholder(const Context& /*context*/) const { return {currentDate(), {"00:00"}}; }

  void getSnapshot(const Context& /*context*/, widgets::Completion<Entry> completion) const {
    completion(entry(currentDate()));
  }

  void getTimeline(
      const Context& /*context*/, widgets::Completion<widgets::Timeline<Entry>> completion) const {
    if (std::getenv("CLOCK_STOPPED") != nullptr) {  // NOLINT(concurrency-mt-unsafe)
      printLine("the clock has stopped");
      return;
    }
    const Date now = currentDate();
    completion({{entry(now), entry(now + 1min)}, widgets::TimelineReloadPolicy::after(now + 2min)});
  }
};

struct Clock {
  std::vector<widgets::WidgetConfiguration> body() const {
    return {
        widgets::StaticConfiguration(
            "clock/Uhr & <Zeit>",
            ClockProvider(),
            [](const ui::Environment& /*environment*/, const fixtures::TextEntry& entry) {
              return ui::VStack(
                         ui::Text("Time of day"), ui::Spacer(), ui::Text::verbatim(entry.data.text))
                  .padding(16);
            })
            .configurationDisplayName("Clock \"UTC\"")
            .description("Tells the time <everywhere>.")
            .supportedFamilies({ui::WidgetFamily::systemMedium, ui::WidgetFamily::systemSmall})};
  }
};

}  // namespace

int main() { return widgets::main(Clock()); }
