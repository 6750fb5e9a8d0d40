// An open file descriptor that its owner closes. A value of one thread; moved, never copied.
#pragma once

#include <unistd.h>
#include <utility>

namespace quillpad {

class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~FileDescriptor() { close(); }

  // The number, or -1 where nothing is open.
  int get() const { return number_; }
  explicit operator bool() const { return number_ >= 0; }

  void close() {
    if (const int number = std::exchange(number_, -1); number >= 0) {
      ::close(number);
    }
  }

 private:
  int number_ = -1;
};

}  // namespace quillpad
