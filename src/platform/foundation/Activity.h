// What the current thread works on: a number that the platform gives each request of the home
// screen, so that a transfer, or a line that was printed, can be told to belong to it.
#pragma once

#include <cstdint>
#include <string>

namespace quillpad {

// The number of the innermost activity of this thread; 0 outside of any.
std::uint64_t currentActivity();

// Prints the line to standard output, at once, and notes it for the activity.
void printLine(const std::string& line);

// The last line that this thread printed in its current activity; empty where there is none.
std::string lastPrintedLine();

// While it lives, this thread works on the given activity. Ends on the thread on which it began.
class ActivityScope {
 public:
  explicit ActivityScope(std::uint64_t activity);
  ~ActivityScope();
  ActivityScope(const ActivityScope&) = delete;
  ActivityScope& operator=(const ActivityScope&) = delete;

 private:
  friend std::uint64_t currentActivity();
  friend void printLine(const std::string& line);
  friend std::string lastPrintedLine();

  std::uint64_t activity_;
  std::string lastLine_;
  ActivityScope* outer_;
};

}  // namespace quillpad
