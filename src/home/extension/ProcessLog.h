// What the extension went through lately, for a person to read: the latest of everything, and how
// many timelines were asked for in a day. In memory alone. A value of one thread.
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "home/extension/WidgetState.h"
#include "platform/channel/Messages.h"
#include "platform/foundation/TransferReport.h"
#include "platform/foundation/Value.h"

namespace quillpad::home {

class ProcessLog {
 public:
  template <class Event>
  struct Dated {
    Date date;
    Event event;
  };
  struct Started {
    int process = 0;
  };
  struct EndedByHome {};  // to start it again
  // A start of the extension, or how it came to an end.
  using Run = std::variant<Started, EndedByHome, Problem>;

  void noteRun(Date now, Run run) { add(runs_, now, std::move(run)); }
  void notePrinted(Date now, std::string line) { add(printed_, now, std::move(line)); }
  void noteTransfer(Date now, TransferReport transfer) {
    add(transfers_, now, std::move(transfer));
  }
  void noteRequest(Date now, const channel::Request& request);

  // The starts and ends of the extension, its transfers and what it printed, the latest first.
  std::vector<Dated<Run>> runs() const { return {runs_.rbegin(), runs_.rend()}; }
  std::vector<Dated<TransferReport>> transfers() const {
    return {transfers_.rbegin(), transfers_.rend()};
  }
  std::vector<Dated<std::string>> printed() const { return {printed_.rbegin(), printed_.rend()}; }

  // How many timelines of each kind were asked for in the last 24 hours, since this log began.
  std::map<std::string, std::size_t> timelinesOfTheDay(Date now) const;

 private:
  static constexpr std::size_t maxEvents = 50;

  template <class Event>
  static void add(std::deque<Dated<Event>>& events, Date now, Event event) {
    events.push_back({now, std::move(event)});
    if (events.size() > maxEvents) {
      events.pop_front();
    }
  }

  std::deque<Dated<Run>> runs_;
  std::deque<Dated<TransferReport>> transfers_;
  std::deque<Dated<std::string>> printed_;
  std::map<std::string, std::deque<Date>> timelines_;
};

}  // namespace quillpad::home
