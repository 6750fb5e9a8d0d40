#include "home/extension/LineRelay.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <unistd.h>
#include <utility>

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t maxPending = std::size_t{256} * 1024;
constexpr std::size_t maxBytesPerSecond = std::size_t{256} * 1024;

}  // namespace

void LineRelay::add(Uptime now, std::string_view line) {
  if (now - second_ >= 1s) {
    second_ = now;
    bytesInSecond_ = 0;
  }
  if (pending_.size() + line.size() > maxPending ||
      bytesInSecond_ + line.size() > maxBytesPerSecond) {
    ++dropped_;
    return;
  }
  tellDropped();
  append(line);
  bytesInSecond_ += line.size();
  write();
}

std::optional<Uptime> LineRelay::nextDeadline() const {
  return dropped_ > 0 && pending_.empty() ? std::optional(second_ + 1s) : std::nullopt;
}

void LineRelay::run(Uptime now) {
  if (const auto deadline = nextDeadline(); deadline && now >= *deadline) {
    tellDropped();
  }
  write();
}

void LineRelay::tellDropped() {
  if (const std::size_t count = std::exchange(dropped_, 0); count > 0) {
    append("quillpad-home: " + std::to_string(count) + " lines were dropped, they came too fast");
  }
}

void LineRelay::append(std::string_view line) {
  pending_ += line;
  pending_ += '\n';
}

// What is ready for writing takes PIPE_BUF bytes without waiting.
void LineRelay::write() {
  std::size_t written = 0;
  while (written < pending_.size()) {
    pollfd ready{descriptor_, POLLOUT, 0};
    if (::poll(&ready, 1, 0) <= 0) {
      break;
    }
    const std::size_t part = std::min<std::size_t>(pending_.size() - written, PIPE_BUF);
    const ssize_t count = ::write(descriptor_, pending_.data() + written, part);
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      written = errno == EAGAIN ? written : pending_.size();  // nobody will ever read it
      break;
    }
  }
  pending_.erase(0, written);
}

}  // namespace quillpad::home
