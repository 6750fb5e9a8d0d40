#include "platform/channel/LineReader.h"

#include <utility>

namespace quillpad::channel {

void LineReader::append(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t end = bytes.find('\n');
    const std::string_view part = bytes.substr(0, end);
    if (!skipping_ && part.size() > maxLength_ - rest_.size()) {
      skipping_ = true;
      rest_.clear();
      lines_.push_back({{}, true});
    }
    if (!skipping_) {
      rest_ += part;
    }
    if (end == std::string_view::npos) {
      return;
    }
    if (!std::exchange(skipping_, false)) {
      lines_.push_back({std::exchange(rest_, {}), false});
    }
    bytes.remove_prefix(end + 1);
  }
}

std::optional<Line> LineReader::next() {
  if (lines_.empty()) {
    return std::nullopt;
  }
  Line line = std::move(lines_.front());
  lines_.pop_front();
  return line;
}

std::string LineReader::takeRest() { return std::exchange(rest_, {}); }

}  // namespace quillpad::channel
