// How long each connection may stay in its state. A connection is named by its descriptor. Pure:
// the time is given. Everything is linear in the connections, of which there are some hundreds at
// most.
#pragma once

#include <chrono>
#include <optional>
#include <vector>

namespace quillpad::home {

class ConnectionTimers {
 public:
  using Time = std::chrono::steady_clock::time_point;

  // Starts the connection's timer again.
  void start(int connection, Time deadline);
  void stop(int connection);

  std::optional<Time> nextDeadline() const;

  // Stops the timers that have run out and returns their connections.
  std::vector<int> takeExpired(Time now);

  // While there are more timers than the maximum: stops the one that was started first and returns
  // its connection.
  std::optional<int> takeOldestBeyond(std::size_t maximum);

 private:
  struct Timer {
    int connection;
    Time deadline;
  };
  std::vector<Timer> timers_;  // in the order of their start
};

}  // namespace quillpad::home
