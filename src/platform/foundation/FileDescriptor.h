// An open file, closed at its owner's end. A value of one thread.
#pragma once

#include <unistd.h>
#include <utility>

namespace foundation {

class FileDescriptor {
 public:
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&&) = delete;
  ~FileDescriptor() {
    if (isOpen()) close(number_);
  }

  bool isOpen() const { return number_ >= 0; }
  int number() const { return number_; }

 private:
  int number_;
};

}  // namespace foundation
