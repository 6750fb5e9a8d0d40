// Where threads wait for sockets, for an alarm and for each other. Any number of threads may wait
// at once: what happens wakes one of them, and the others wait on. All operations are callable from
// any thread. Private to the session.
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "platform/os/FileDescriptor.h"

namespace quillpad {

class Poller {
 public:
  using Clock = std::chrono::steady_clock;

  // Without file descriptors to be had the process ends.
  Poller();

  // Has it told when one of these events (of EPOLLIN and EPOLLOUT) is next, or an error, and
  // nothing more until the socket is watched again.
  void watch(int socket, std::uint32_t events);

  // Has one waiting thread go on at that time; an alarm set before is none any more.
  void setAlarm(Clock::time_point time);

  // Has one waiting thread go on, or the next that would wait.
  void wake();

  // Waits until something happens, and gives the sockets to which it did, and maybe descriptors of
  // the poller's own.
  std::vector<int> wait();

 private:
  FileDescriptor epoll_;
  FileDescriptor timer_;
  FileDescriptor waker_;
};

}  // namespace quillpad
