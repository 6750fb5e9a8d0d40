// An extension whose five widgets show the last line of its own program file, so that a test makes
// another program by writing another line: "ends" ends at once, "breaks" at each rendering.
#include <string>
#include <unistd.h>
#include <vector>

#include "fixtures/TextEntry.h"
#include "platform/foundation/Clock.h"
#include "platform/os/WholeFile.h"
#include "platform/widgets/WidgetBundle.h"

namespace {

using namespace quillpad;
using namespace std::chrono_literals;

struct StampProvider {
  using Entry = fixtures::TextEntry;
  using Context = widgets::TimelineProviderContext;

  Entry placeholder(const Context& /*context*/) const { return {currentDate(), {}}; }
  void getSnapshot(const Context& context, widgets::Completion<Entry> completion) const {
    completion(placeholder(context));
  }
  void getTimeline(
      const Context& context, widgets::Completion<widgets::Timeline<Entry>> completion) const {
    completion(
        {{placeholder(context)}, widgets::TimelineReloadPolicy::after(currentDate() + 5min)});
  }
};

std::string stamp() {
  const auto program = readWholeFile("/proc/self/exe", std::size_t{1} << 30);
  return program ? program->substr(program->rfind('\n') + 1) : "unreadable";
}

struct Stamps {
  std::vector<widgets::WidgetConfiguration> body() const {
    std::vector<widgets::WidgetConfiguration> all;
    for (const char* kind : {"A", "B", "C", "D", "E"}) {
      all.push_back(widgets::StaticConfiguration(
                        kind,
                        StampProvider(),
                        [stamp = stamp()](
                            const ui::Environment& /*environment*/, const fixtures::TextEntry&) {
                          if (stamp == "breaks") {
                            fatal("this program breaks");
                          }
                          return ui::View(ui::Text::verbatim(stamp));
                        })
                        .configurationDisplayName(kind)
                        .description("")
                        .supportedFamilies({ui::WidgetFamily::systemSmall}));
    }
    return all;
  }
};

}  // namespace

int main() {
  if (stamp() == "ends") {
    fatal("this program ends at once");
  }
  return widgets::main(Stamps());
}
