#include "home/server/ConnectionTimers.h"

#include <algorithm>

namespace quillpad::home {

void ConnectionTimers::start(int connection, Time deadline) {
  stop(connection);
  timers_.push_back({connection, deadline});
}

void ConnectionTimers::stop(int connection) {
  std::erase_if(timers_, [&](const Timer& timer) { return timer.connection == connection; });
}

std::optional<ConnectionTimers::Time> ConnectionTimers::nextDeadline() const {
  const auto nearest = std::ranges::min_element(timers_, {}, &Timer::deadline);
  return nearest == timers_.end() ? std::nullopt : std::optional(nearest->deadline);
}

std::vector<int> ConnectionTimers::takeExpired(Time now) {
  std::vector<int> expired;
  std::erase_if(timers_, [&](const Timer& timer) {
    if (timer.deadline > now) {
      return false;
    }
    expired.push_back(timer.connection);
    return true;
  });
  return expired;
}

std::optional<int> ConnectionTimers::takeOldestBeyond(std::size_t maximum) {
  if (timers_.size() <= maximum) {
    return std::nullopt;
  }
  const int connection = timers_.front().connection;
  timers_.erase(timers_.begin());
  return connection;
}

}  // namespace quillpad::home
