#include "home/commands/Output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <system_error>
#include <unistd.h>

#include "platform/foundation/FileDescriptor.h"

namespace quillpad::home {
namespace {

std::unexpected<Failure> writeFailure(const std::filesystem::path& file, int error) {
  return failure(
      ExitStatus::notPossible, "cannot write " + file.string() + ": " + std::strerror(error));
}

// 0, or the error's number.
int writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

int writeInPlace(const std::filesystem::path& file, std::string_view bytes) {
  const FileDescriptor descriptor(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
  return descriptor ? writeAll(descriptor.get(), bytes) : errno;
}

int replace(const std::filesystem::path& file, std::string_view bytes) {
  const auto part = file.parent_path() / (".quillpad-" + std::to_string(::getpid()) + ".part");
  ::unlink(part.c_str());
  FileDescriptor descriptor(::open(part.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (!descriptor) {
    return errno;
  }
  int error = writeAll(descriptor.get(), bytes);
  descriptor.close();
  if (error == 0 && ::rename(part.c_str(), file.c_str()) != 0) {
    error = errno;
  }
  if (error != 0) {
    ::unlink(part.c_str());
  }
  return error;
}

}  // namespace

Done print(std::string_view text) {
  if (const int error = writeAll(STDOUT_FILENO, text); error != 0) {
    return writeFailure("to standard output", error);
  }
  return {};
}

Done writeOutput(const std::filesystem::path& file, std::string_view bytes) {
  std::error_code unresolved;
  const auto target = std::filesystem::canonical(file, unresolved);
  const auto& path = unresolved ? file : target;
  std::error_code ignored;
  const auto status = std::filesystem::status(path, ignored);
  const bool inPlace = std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
  if (const int error = inPlace ? writeInPlace(path, bytes) : replace(path, bytes); error != 0) {
    return writeFailure(file, error);
  }
  return {};
}

}  // namespace quillpad::home
