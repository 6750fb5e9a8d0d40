#include "platform/channel/LineReader.h"

#include <utility>

namespace quillpad::channel {

void LineReader::append(std::string_view bytes) {
  buffer_.erase(0, start_);
  searched_ -= start_;
  start_ = 0;
  buffer_ += bytes;
}

std::optional<Line> LineReader::next() {
  while (true) {
    const std::size_t end = buffer_.find('\n', searched_);
    const bool whole = end != std::string::npos;
    const std::size_t stop = whole ? end : buffer_.size();
    const bool tooLong = stop - start_ > longestLine_;
    searched_ = stop;
    if (!whole && !tooLong && !skipping_) {
      return std::nullopt;
    }

    Line line{{}, tooLong};
    if (!tooLong && !skipping_) {
      line.text = buffer_.substr(start_, stop - start_);
    }
    start_ = searched_ = whole ? stop + 1 : stop;
    const bool reported = std::exchange(skipping_, !whole);
    if (!reported) {
      return line;
    }
    if (!whole) {
      return std::nullopt;
    }
  }
}

std::string LineReader::takeRest() {
  std::string rest = skipping_ ? std::string() : buffer_.substr(start_);
  buffer_.clear();
  start_ = searched_ = 0;
  skipping_ = false;
  return rest;
}

}  // namespace quillpad::channel
