#include "platform/foundation/WholeFile.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>

#include "platform/foundation/FileDescriptor.h"

namespace quillpad {
namespace {

std::error_code lastError() { return {errno, std::system_category()}; }

std::error_code writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) {
      return lastError();
    }
    if (written > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    }
  }
  return {};
}

std::error_code syncFolder(const std::filesystem::path& folder) {
  const FileDescriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!descriptor || fsync(descriptor.get()) != 0) {
    return lastError();
  }
  return {};
}

}  // namespace

std::expected<std::string, std::error_code> readWholeFile(
    const std::filesystem::path& file, std::size_t maximumBytes) {
  // Opening a pipe that nobody writes to would wait without O_NONBLOCK.
  const FileDescriptor descriptor(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status{};
  if (!descriptor || fstat(descriptor.get(), &status) != 0) {
    return std::unexpected(lastError());
  }
  if (!S_ISREG(status.st_mode)) {
    return std::unexpected(std::make_error_code(std::errc::invalid_argument));
  }

  std::string bytes;
  std::array<char, 16384> piece{};
  while (true) {
    const ssize_t count = read(descriptor.get(), piece.data(), piece.size());
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      return std::unexpected(lastError());
    }
    if (count == 0) {
      return bytes;
    }
    bytes.append(piece.data(), static_cast<std::size_t>(count));
    if (bytes.size() > maximumBytes) {
      return std::unexpected(std::make_error_code(std::errc::file_too_large));
    }
  }
}

std::error_code writeWholeFile(const std::filesystem::path& file, std::string_view bytes) {
  const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
  std::string temporary = (folder / ("." + file.filename().string() + ".XXXXXX")).string();
  const FileDescriptor descriptor(mkostemp(temporary.data(), O_CLOEXEC));  // mode 0600
  if (!descriptor) {
    return lastError();
  }

  std::error_code error = writeAll(descriptor.get(), bytes);
  if (!error && fsync(descriptor.get()) != 0) {
    error = lastError();
  }
  if (!error && rename(temporary.c_str(), file.c_str()) != 0) {
    error = lastError();
  }
  if (error) {
    unlink(temporary.c_str());
    return error;
  }
  return syncFolder(folder);
}

}  // namespace quillpad
