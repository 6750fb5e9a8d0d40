#include "home/extension/ProcessLog.h"

#include <algorithm>
#include <chrono>

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t maxTimelines = 2000;  // of a kind; no phone grants a twentieth of it

}  // namespace

void ProcessLog::noteRequest(Date now, const channel::Request& request) {
  if (const auto* timeline = std::get_if<channel::TimelineRequest>(&request)) {
    std::deque<Date>& asked = timelines_[timeline->kind];
    asked.push_back(now);
    if (asked.size() > maxTimelines) {
      asked.pop_front();
    }
  }
}

std::map<std::string, std::size_t> ProcessLog::timelinesOfTheDay(Date now) const {
  std::map<std::string, std::size_t> counts;
  for (const auto& [kind, asked] : timelines_) {
    counts[kind] = static_cast<std::size_t>(
        std::ranges::count_if(asked, [&](Date date) { return now - date < 24h; }));
  }
  return counts;
}

}  // namespace quillpad::home
