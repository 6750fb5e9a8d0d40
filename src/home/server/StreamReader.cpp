#include "home/server/StreamReader.h"

#include <algorithm>
#include <utility>

namespace quillpad::home {

bool StreamReader::hasMore() {
  static const auto heartbeat = std::make_shared<const std::string>(":\n\n");
  if (!event_) {
    sent_ = 0;
    event_ = stream_();
    if (!event_ && std::exchange(heartbeatDue_, false)) {
      event_ = heartbeat;
    }
  }
  return event_ != nullptr;
}

std::size_t StreamReader::read(char* buffer, std::size_t size) {
  if (!hasMore()) {
    return 0;
  }
  const std::size_t count = event_->copy(buffer, size, sent_);
  sent_ += count;
  if (sent_ == event_->size()) {
    event_.reset();
  }
  return count;
}

bool FileReader::hasMore() {
  if (sent_ == piece_.size() && !ended_) {
    auto piece = nextPiece_();
    if (!piece) {
      return false;
    }
    piece_ = *std::move(piece);
    sent_ = 0;
    ended_ = piece_.empty();
  }
  return true;
}

std::optional<std::size_t> FileReader::read(char* buffer, std::size_t size) {
  if (!hasMore()) {
    return 0;
  }
  if (ended_) {
    return std::nullopt;
  }
  const std::size_t count = piece_.copy(buffer, size, sent_);
  sent_ += count;
  return count;
}

}  // namespace quillpad::home
