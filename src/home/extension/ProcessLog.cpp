#include "home/extension/ProcessLog.h"

#include <algorithm>
#include <chrono>

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t maxLines = 50;
constexpr std::size_t maxTimelines = 2000;  // of a kind; no phone grants a twentieth of it

}  // namespace

void ProcessLog::add(std::deque<Line>& lines, Date now, std::string text) {
  lines.push_back({now, std::move(text)});
  if (lines.size() > maxLines) {
    lines.pop_front();
  }
}

void ProcessLog::noteTransfer(Date now, const TransferReport& transfer) {
  using Milliseconds = std::chrono::milliseconds;
  const auto time = std::chrono::duration_cast<Milliseconds>(transfer.duration).count();
  add(transfers_,
      now,
      transfer.path + ": " +
          (transfer.error ? transfer.error->localizedDescription + " (" +
                                std::to_string(transfer.error->code) + ")"
                          : "status " + std::to_string(transfer.statusCode)) +
          ", " + std::to_string(time) + " ms, " + std::to_string(transfer.sentBytes) +
          " bytes sent, " + std::to_string(transfer.receivedBytes) + " received");
}

void ProcessLog::noteRequest(Date now, const channel::Request& request) {
  if (const auto* timeline = std::get_if<channel::TimelineRequest>(&request)) {
    std::deque<Date>& asked = timelines_[timeline->kind];
    asked.push_back(now);
    while (asked.size() > maxTimelines || now - asked.front() >= 24h) {
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
