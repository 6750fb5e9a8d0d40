#include "platform/net/Poller.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>

#include "platform/foundation/Fatal.h"

namespace quillpad {

// Neither the timer nor the waker is ever read: triggered by edges, each of their events is told
// once. Of the threads that wait, the kernel wakes the one that began last.
Poller::Poller()
    : epoll_(::epoll_create1(EPOLL_CLOEXEC)),
      timer_(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)),
      waker_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  for (const FileDescriptor* own : {&timer_, &waker_}) {
    epoll_event event{.events = EPOLLIN | EPOLLET, .data = {.fd = own->get()}};
    if (::epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, own->get(), &event) != 0) {
      fatal("the URL session has no file descriptors to wait with");
    }
  }
}

void Poller::watch(int socket, std::uint32_t events) {
  epoll_event event{.events = events | EPOLLONESHOT, .data = {.fd = socket}};
  ::epoll_ctl(epoll_.get(), EPOLL_CTL_DEL, socket, nullptr);
  ::epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, socket, &event);
}

void Poller::setAlarm(Clock::time_point time) {
  const auto sinceBoot = time.time_since_epoch();  // as the kernel counts too
  const auto seconds = std::chrono::floor<std::chrono::seconds>(sinceBoot);
  itimerspec alarm{};
  alarm.it_value = {.tv_sec = seconds.count(), .tv_nsec = (sinceBoot - seconds).count()};
  ::timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME, &alarm, nullptr);
}

void Poller::wake() { ::eventfd_write(waker_.get(), 1); }

std::vector<int> Poller::wait() {
  std::array<epoll_event, 16> events{};
  const int count = ::epoll_wait(epoll_.get(), events.data(), events.size(), -1);
  std::vector<int> descriptors;
  std::transform(
      events.begin(),
      events.begin() + std::max(count, 0),
      std::back_inserter(descriptors),
      [](const epoll_event& event) { return event.data.fd; });
  return descriptors;
}

}  // namespace quillpad
