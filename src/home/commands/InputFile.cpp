#include "home/commands/InputFile.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "platform/foundation/FileDescriptor.h"

namespace quillpad::home {

std::expected<std::string, Failure> readInput(const std::string& file, std::size_t maximumBytes) {
  const FileDescriptor descriptor(
      file == "-" ? ::dup(STDIN_FILENO) : ::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  std::string bytes;
  std::array<char, 65536> buffer{};
  while (descriptor) {
    const ssize_t count = ::read(descriptor.get(), buffer.data(), buffer.size());
    if (count > 0) {
      bytes.append(buffer.data(), static_cast<std::size_t>(count));
    }
    if (bytes.size() > maximumBytes) {
      return failure(
          ExitStatus::wrongUsage,
          inputName(file) + " is too large: it holds more than " + std::to_string(maximumBytes) +
              " bytes");
    }
    if (count == 0) {
      return bytes;
    }
    if (count < 0 && errno != EINTR) {
      break;
    }
  }
  return failure(
      ExitStatus::notPossible, "cannot read " + inputName(file) + ": " + std::strerror(errno));
}

std::string inputName(const std::string& file) { return file == "-" ? "standard input" : file; }

}  // namespace quillpad::home
