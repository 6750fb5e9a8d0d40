// What the extension went through lately, for a person to read: the latest of everything, and how
// many timelines were asked for in a day. In memory alone. A value of one thread.
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "platform/channel/Messages.h"
#include "platform/foundation/TransferReport.h"
#include "platform/foundation/Value.h"

namespace quillpad::home {

class ProcessLog {
 public:
  struct Line {
    Date date;
    std::string text;
  };

  void noteRun(Date now, std::string what) { add(runs_, now, std::move(what)); }
  void notePrinted(Date now, std::string line) { add(printed_, now, std::move(line)); }
  void noteTransfer(Date now, const TransferReport& transfer);
  void noteRequest(Date now, const channel::Request& request);

  // The starts and ends of the extension, its transfers and what it printed, the latest first.
  std::vector<Line> runs() const { return {runs_.rbegin(), runs_.rend()}; }
  std::vector<Line> transfers() const { return {transfers_.rbegin(), transfers_.rend()}; }
  std::vector<Line> printed() const { return {printed_.rbegin(), printed_.rend()}; }

  // How many timelines of each kind were asked for in the last 24 hours, since this log began.
  std::map<std::string, std::size_t> timelinesOfTheDay(Date now) const;

 private:
  static void add(std::deque<Line>& lines, Date now, std::string text);

  std::deque<Line> runs_;
  std::deque<Line> transfers_;
  std::deque<Line> printed_;
  std::map<std::string, std::deque<Date>> timelines_;
};

}  // namespace quillpad::home
