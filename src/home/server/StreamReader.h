// What one listener of an event stream is still to be sent: the stream's events, each to its end,
// and a heartbeat where there is none. Plain, of one thread.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "home/server/WebMessages.h"

namespace quillpad::home {

class StreamReader {
 public:
  explicit StreamReader(EventStream stream) : stream_(std::move(stream)) {}

  // From now on a comment is sent where there is no event, once.
  void requestHeartbeat() { heartbeatDue_ = true; }

  // Whether there is something to send; asks the stream where the last event was sent to its end.
  bool hasMore();

  // Copies what comes next and returns how many bytes that is; 0 where there is nothing for now.
  std::size_t read(char* buffer, std::size_t size);

 private:
  EventStream stream_;
  std::shared_ptr<const std::string> event_;  // being sent
  std::size_t sent_ = 0;
  bool heartbeatDue_ = false;
};

// What is still to be sent of a file that is made meanwhile. Plain, of one thread.
class FileReader {
 public:
  explicit FileReader(std::function<std::optional<std::string>()> nextPiece)
      : nextPiece_(std::move(nextPiece)) {}

  // Whether there is something to send, or nothing more will come.
  bool hasMore();

  // Copies what comes next and returns how many bytes that is; 0 where there is nothing for now,
  // nothing at the end.
  std::optional<std::size_t> read(char* buffer, std::size_t size);

 private:
  std::function<std::optional<std::string>()> nextPiece_;
  std::string piece_;  // being sent
  std::size_t sent_ = 0;
  bool ended_ = false;
};

}  // namespace quillpad::home
