// A child process: how it is started, and that none of its descendants outlives it. This process
// becomes their subreaper: those that were left by their parents, in whatever process group or
// session, become its own children. Callable from any thread; the kernel ends a child with the
// thread that started it.
#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <vector>

#include "home/extension/Confinement.h"
#include "platform/os/FileDescriptor.h"

namespace quillpad::home {

struct ChildPlan {
  std::filesystem::path program;
  std::vector<std::string> environment;  // "NAME=value"
  // What the child has open, by its numbers from 1 on; 0 is /dev/null.
  std::vector<FileDescriptor> descriptors;
  const Confinement& confinement;
};

class ChildProcess {
 public:
  struct End {
    int exitStatus = 0;
    int signal = 0;  // 0 where it ended by itself

    // For a person: "exit status 1" or "signal 6, Aborted".
    std::string manner() const;
  };

  // Starts the program confined, in a session of its own, with no inherited signal settings or
  // descriptors.
  static std::expected<ChildProcess, std::string> start(ChildPlan plan);

  // Ends the child and its descendants, and waits a moment for it.
  ~ChildProcess();
  ChildProcess(ChildProcess&&) noexcept = default;
  ChildProcess& operator=(ChildProcess&&) = delete;

  // 0 once its end was seen.
  pid_t pid() const { return process_ ? pid_ : 0; }

  // Readable once it has ended; -1 once that was seen.
  int descriptor() const { return process_.get(); }

  bool hasEnded() const;

  // Ends it at once.
  void kill() const;

  // How it ended, where it has; ends its descendants.
  End reap();

 private:
  ChildProcess(pid_t pid, FileDescriptor process) : pid_(pid), process_(std::move(process)) {}

  pid_t pid_;
  FileDescriptor process_;
};

// Ends what children left behind that have ended.
void endStrays();

}  // namespace quillpad::home
