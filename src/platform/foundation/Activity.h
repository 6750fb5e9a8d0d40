// What the current thread works on: a number that the platform gives each request of the home
// screen, so that a transfer can be told to belong to it.
#pragma once

#include <cstdint>

namespace quillpad {

// The number of the innermost activity of this thread; 0 outside of any.
std::uint64_t currentActivity();

// While it lives, this thread works on the given activity. Ends on the thread on which it began.
class ActivityScope {
 public:
  explicit ActivityScope(std::uint64_t activity);
  ~ActivityScope();
  ActivityScope(const ActivityScope&) = delete;
  ActivityScope& operator=(const ActivityScope&) = delete;

 private:
  std::uint64_t outer_;
};

}  // namespace quillpad
