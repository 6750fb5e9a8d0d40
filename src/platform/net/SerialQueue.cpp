#include "platform/net/SerialQueue.h"

#include <chrono>
#include <utility>

#include "platform/foundation/BackgroundThread.h"

namespace quillpad {

void SerialQueue::post(Job job) {
  {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
    if (thread_ == std::thread::id()) {
      std::thread thread = startBackgroundThread([this] { run(); });
      thread_ = thread.get_id();
      thread.detach();
    }
  }
  changed_.notify_all();
}

void SerialQueue::stop() {
  std::unique_lock lock(mutex_);
  stopping_ = true;
  if (thread_ != std::this_thread::get_id()) {
    changed_.wait_for(lock, std::chrono::seconds(1), [this] { return !busy_; });
  }
}

void SerialQueue::run() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return !jobs_.empty() && !stopping_; });
    busy_ = true;
    {
      Job job = std::move(jobs_.front());
      jobs_.pop_front();
      lock.unlock();
      job();
    }
    lock.lock();
    busy_ = false;
    if (stopping_) {
      changed_.notify_all();
    }
  }
}

}  // namespace quillpad
