#include "home/commands/Progress.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace quillpad::home {
namespace {

constexpr std::size_t barWidth = 40;
constexpr auto pause = std::chrono::milliseconds(50);

}  // namespace

Progress::Progress(std::size_t total)
    : total_(std::max<std::size_t>(total, 1)), shows_(::isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  if (shows_) {
    std::fputs("\r\033[K", stderr);
  }
}

void Progress::advance() {
  if (!shows_) {
    return;
  }
  const std::scoped_lock lock(mutex_);
  ++done_;
  const auto now = std::chrono::steady_clock::now();
  if (now < next_) {
    return;
  }
  next_ = now + pause;
  std::string bar(done_ * barWidth / total_, '#');
  bar.resize(barWidth, ' ');
  std::fprintf(stderr, "\r[%s] %zu of %zu pictures", bar.c_str(), done_, total_);
}

}  // namespace quillpad::home
