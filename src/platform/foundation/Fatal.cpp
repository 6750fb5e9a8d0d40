#include "platform/foundation/Fatal.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sys/resource.h>
#include <unistd.h>

namespace quillpad {

void forbidCoreFiles() {
  // One byte, unlike zero, also holds where the system hands cores to a program.
  constexpr rlimit oneByte{.rlim_cur = 1, .rlim_max = 1};
  setrlimit(RLIMIT_CORE, &oneByte);
}

void fatal(std::string_view message) {
  std::string line(message);
  std::ranges::replace(line, '\n', ' ');
  line += '\n';
  // One write, so that lines of several threads do not mix; nothing can be done where it fails.
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
  forbidCoreFiles();
  static_cast<void>(std::signal(SIGABRT, SIG_DFL));
  std::abort();
}

void fatalAt(const std::source_location& where, std::string_view what) {
  const std::string unit = std::filesystem::path(where.file_name()).stem().string();
  fatal(unit + " line " + std::to_string(where.line()) + ": " + std::string(what));
}

}  // namespace quillpad
