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

}  // namespace quillpad::home
