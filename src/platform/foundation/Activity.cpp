#include "platform/foundation/Activity.h"

#include <utility>

namespace quillpad {
namespace {

thread_local std::uint64_t current = 0;

}  // namespace

std::uint64_t currentActivity() { return current; }

ActivityScope::ActivityScope(std::uint64_t activity) : outer_(std::exchange(current, activity)) {}

ActivityScope::~ActivityScope() { current = outer_; }

}  // namespace quillpad
