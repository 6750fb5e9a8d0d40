// Sets environment variables for the length of a scope.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

class ScopedEnvironment {
 public:
  // A null value takes the variable away.
  ScopedEnvironment(const char* name, const char* value) : name_(name) {
    if (const char* before = std::getenv(name)) before_ = before;
    put(value);
  }
  ~ScopedEnvironment() { put(before_ ? before_->c_str() : nullptr); }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

 private:
  void put(const char* value) {
    if (value == nullptr) {
      unsetenv(name_);
    } else {
      setenv(name_, value, 1);
    }
  }

  const char* name_;
  std::optional<std::string> before_;
};
