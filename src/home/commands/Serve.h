// The live home screen as a program: runs until it is told to stop.
#pragma once

#include <cstdint>
#include <filesystem>

#include "home/extension/Failure.h"

namespace quillpad::home {

struct ServeOptions {
  std::filesystem::path extension;  // the program to start
  std::uint16_t port = 8480;        // 0: a free one
};

// Keeps the placed widgets fresh and shows them on a page whose address it prints, until SIGINT or
// SIGTERM comes or the parent process ends (under nohup it stays). Leaves no process behind.
Done serve(const ServeOptions& options);

}  // namespace quillpad::home
