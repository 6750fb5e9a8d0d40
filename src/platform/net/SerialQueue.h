// A thread that runs the jobs given to it, one at a time and in their order. It starts with the
// first job. All operations are callable from any thread.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace quillpad {

class SerialQueue {
 public:
  using Job = std::move_only_function<void()>;

  // Has the job run, and destroyed, on the queue's thread.
  void post(Job job);

  // For the end of the process: no further job begins, and the one under way is given a second to
  // end. Jobs that wait are neither run nor destroyed.
  void stop();

 private:
  void run();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Job> jobs_;
  std::thread::id thread_;
  bool busy_ = false;
  bool stopping_ = false;
};

}  // namespace quillpad
