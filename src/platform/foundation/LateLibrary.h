// Functions of a shared library that is loaded when one of them is first called. For libraries that
// few runs of a program need: loading libcurl and what it brings takes longer than most commands.
// Callable from any thread.
#pragma once

#include <atomic>

namespace quillpad {

// The library's function; a library or function that is not there ends the process.
void* lateFunction(const char* library, const char* function);

// Is called like the function that it stands for.
template <class Function>
class LateFunction {
 public:
  constexpr LateFunction(const char* library, const char* name) : library_(library), name_(name) {}

  operator Function*() const {
    Function* found = found_.load(std::memory_order_acquire);
    if (found == nullptr) {
      found = reinterpret_cast<Function*>(lateFunction(library_, name_));
      found_.store(found, std::memory_order_release);
    }
    return found;
  }

 private:
  const char* library_;
  const char* name_;
  mutable std::atomic<Function*> found_ = nullptr;
};

}  // namespace quillpad

// Within a namespace, the function of that name of the global one, found there first. The name may
// be a macro for the one in the library, as ICU's are.
#define QUILLPAD_LATE_FUNCTION(library, name) QUILLPAD_LATE_FUNCTION_NAMED(library, name)
#define QUILLPAD_LATE_FUNCTION_NAMED(library, name) \
  inline constinit const LateFunction<decltype(::name)> name { library, #name }  // NOLINT: not ours
