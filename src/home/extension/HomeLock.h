// Keeps a second home screen from the state of the one that runs: a locked file beside the state,
// which says where the page is. The lock ends with the process, however it ends. Belongs to one
// thread.
#pragma once

#include <expected>
#include <string>

#include "platform/os/FileDescriptor.h"

namespace quillpad::home {

class HomeLock {
 public:
  // The lock of this user's home screen, which holds nothing where no state can be kept; where
  // another has it, one line that gives its address.
  static std::expected<HomeLock, std::string> take();

  // From now on others are told this address.
  void setAddress(const std::string& address) const;

 private:
  explicit HomeLock(FileDescriptor file) : file_(std::move(file)) {}

  FileDescriptor file_;
};

}  // namespace quillpad::home
