// A bar on standard error for work that takes a while, where a terminal listens. Callable from any
// thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>

namespace quillpad::home {

class Progress {
 public:
  explicit Progress(std::size_t total);
  // Leaves no trace of the bar.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // One more is done.
  void advance();

 private:
  std::mutex mutex_;
  std::size_t total_;
  std::size_t done_ = 0;
  bool shows_;
  std::chrono::steady_clock::time_point next_{};
};

}  // namespace quillpad::home
