#include "home/commands/Files.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

#include "platform/os/FileDescriptor.h"
#include "platform/os/WholeFile.h"

namespace quillpad::home {
namespace {

Done written(std::string_view where, std::error_code error) {
  if (error) {
    return failure(
        ExitStatus::notPossible, "cannot write " + std::string(where) + ": " + error.message());
  }
  return {};
}

std::expected<std::string, std::error_code> bytesOf(
    const std::string& file, std::size_t maximumBytes) {
  const FileDescriptor descriptor(
      file == "-" ? ::dup(STDIN_FILENO) : ::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descriptor) {
    return std::unexpected(std::error_code(errno, std::system_category()));
  }
  return readToEnd(descriptor.get(), maximumBytes);
}

}  // namespace

std::expected<std::string, Failure> readInput(const std::string& file, std::size_t maximumBytes) {
  auto bytes = bytesOf(file, maximumBytes);
  if (bytes) {
    return std::move(*bytes);
  }
  if (bytes.error() == std::errc::file_too_large) {
    return failure(
        ExitStatus::wrongUsage,
        inputName(file) + " is larger than " + std::to_string(maximumBytes) + " bytes");
  }
  return failure(
      ExitStatus::notPossible, "cannot read " + inputName(file) + ": " + bytes.error().message());
}

std::string inputName(const std::string& file) { return file == "-" ? "standard input" : file; }

Done print(std::string_view text) {
  return written("to standard output", writeAll(STDOUT_FILENO, text));
}

Done writeOutput(const std::filesystem::path& file, std::string_view bytes) {
  return written(file.string(), writeWholeFile(file, bytes, {FileAccess::asBefore}));
}

}  // namespace quillpad::home
