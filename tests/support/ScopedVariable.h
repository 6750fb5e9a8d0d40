// An environment variable with another value for a while. For tests: not while other threads read
// the environment.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace support {

class ScopedVariable {
 public:
  // No value takes the variable away.
  ScopedVariable(std::string name, const std::optional<std::string>& value)
      : name_(std::move(name)) {
    if (const char* before = std::getenv(name_.c_str())) {
      before_ = before;
    }
    set(value);
  }
  ~ScopedVariable() { set(before_); }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  void set(const std::optional<std::string>& value) {
    if (value) {
      setenv(name_.c_str(), value->c_str(), 1);
    } else {
      unsetenv(name_.c_str());
    }
  }

  std::string name_;
  std::optional<std::string> before_;
};

}  // namespace support
