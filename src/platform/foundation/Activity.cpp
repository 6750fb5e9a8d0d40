#include "platform/foundation/Activity.h"

#include <cstdio>
#include <utility>

namespace quillpad {
namespace {

thread_local ActivityScope* current = nullptr;

}  // namespace

std::uint64_t currentActivity() { return current == nullptr ? 0 : current->activity_; }

void printLine(const std::string& line) {
  if (current != nullptr) {
    current->lastLine_ = line;
  }
  std::puts(line.c_str());
  std::fflush(stdout);
}

std::string lastPrintedLine() { return current == nullptr ? std::string() : current->lastLine_; }

ActivityScope::ActivityScope(std::uint64_t activity)
    : activity_(activity), outer_(std::exchange(current, this)) {}

ActivityScope::~ActivityScope() { current = outer_; }

}  // namespace quillpad
