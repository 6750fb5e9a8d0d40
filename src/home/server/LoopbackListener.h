// A socket that listens on 127.0.0.1 for many connections.
#pragma once

#include <cstdint>
#include <expected>
#include <system_error>

#include "platform/os/FileDescriptor.h"

namespace quillpad::home {

struct LoopbackListener {
  FileDescriptor socket;
  std::uint16_t port = 0;

  // At the port, at a free one for 0.
  static std::expected<LoopbackListener, std::error_code> open(std::uint16_t port);
};

// Raises this process's limit of open descriptors to so many, as far as the system allows it, and
// returns the limit.
std::uint64_t allowDescriptors(std::uint64_t count);

}  // namespace quillpad::home
