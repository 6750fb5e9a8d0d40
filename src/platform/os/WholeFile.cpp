#include "platform/os/WholeFile.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/os/FileDescriptor.h"
#include "platform/os/Random.h"

namespace quillpad {
namespace {

std::error_code lastError() { return {errno, std::system_category()}; }

std::error_code syncFolder(const std::filesystem::path& folder) {
  const FileDescriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!descriptor || fsync(descriptor.get()) != 0) {
    return lastError();
  }
  return {};
}

using Produce = std::function<std::error_code(const TakePiece&)>;

std::error_code writePieces(int descriptor, const Produce& produce) {
  return produce([descriptor](std::string_view piece) { return writeAll(descriptor, piece); });
}

// Whoever put a pipe in a private file's place is not waited for.
std::error_code writeInPlace(
    const std::filesystem::path& file, const Produce& produce, FileAccess access) {
  const int waiting = access == FileAccess::ownerOnly ? O_NONBLOCK : 0;
  const FileDescriptor descriptor(open(file.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC | waiting));
  return descriptor ? writePieces(descriptor.get(), produce) : lastError();
}

constexpr std::string_view temporaryPrefix = ".quillpad-";

// A name that tells whose it is and that no other process can have foreseen.
std::string temporaryName() {
  return std::string(temporaryPrefix) + std::to_string(getpid()) + "-" + randomHex(8);
}

// The file that a name stands for, there or not: what the last of its links leads to.
std::filesystem::path targetOf(std::filesystem::path file) {
  constexpr int maxLinks = 40;  // as many as the system follows
  for (int links = 0; links < maxLinks; ++links) {
    std::error_code isNoLink;
    const auto next = std::filesystem::read_symlink(file, isNoLink);
    if (isNoLink) {
      break;
    }
    file = file.parent_path() / next;
  }
  return file;
}

std::filesystem::path folderOf(const std::filesystem::path& file) {
  return file.has_parent_path() ? file.parent_path() : ".";
}

// Removes what processes that were ended while they wrote have left there: it may hold what was to
// be private.
void removeLeftovers(const std::filesystem::path& folder) {
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    const std::string name = entry.path().filename();
    pid_t writer = 0;
    if (name.starts_with(temporaryPrefix)) {
      std::from_chars(name.data() + temporaryPrefix.size(), name.data() + name.size(), writer);
    }
    if (writer > 0 && kill(writer, 0) != 0 && errno == ESRCH) {
      unlink(entry.path().c_str());
    }
  }
}

// A file on the way to its place in a folder.
class NewFile {
 public:
  NewFile(std::filesystem::path place, mode_t mode)
      : place_(std::move(place)),
        folder_(folderOf(place_)),
        temporary_(folder_ / temporaryName()),
        descriptor_(open(folder_.c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, mode)) {
    if (!descriptor_) {  // a file system without nameless files, or no such folder
      descriptor_ =
          FileDescriptor(open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
      named_ = static_cast<bool>(descriptor_);
    }
    error_ = descriptor_ ? std::error_code() : lastError();
  }

  ~NewFile() {
    if (named_) {
      unlink(temporary_.c_str());
    }
  }

  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  void setMode(mode_t mode) {
    if (descriptor_) {
      check(fchmod(descriptor_.get(), mode));
    }
  }

  // Writes what comes and puts the file in its place.
  std::error_code fill(const Produce& produce, Durability durability) {
    const bool syncs = durability == Durability::synced;
    if (!error_) {
      error_ = writePieces(descriptor_.get(), produce);
    }
    check(error_ || !syncs ? 0 : fsync(descriptor_.get()));
    if (!error_) {
      moveToPlace();
    }
    return error_ || !syncs ? error_ : syncFolder(folder_);
  }

 private:
  void check(int result) {
    if (result != 0 && !error_) {
      error_ = lastError();
    }
  }

  // A link cannot replace a file, a rename can.
  void moveToPlace() {
    if (!named_ && link(place_) == 0) {
      return;
    }
    named_ = named_ || (errno == EEXIST && link(temporary_) == 0);
    check(named_ ? rename(temporary_.c_str(), place_.c_str()) : -1);
    named_ = named_ && error_;
  }

  int link(const std::filesystem::path& name) const {
    const std::string self = "/proc/self/fd/" + std::to_string(descriptor_.get());
    return linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW);
  }

  std::filesystem::path place_;
  std::filesystem::path folder_;
  std::filesystem::path temporary_;
  FileDescriptor descriptor_;
  std::error_code error_;
  bool named_ = false;  // whether the temporary name is in use
};

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

  return readToEnd(descriptor.get(), maximumBytes);
}

std::expected<std::string, std::error_code> readToEnd(int descriptor, std::size_t maximumBytes) {
  std::string bytes;
  std::array<char, 16384> piece{};
  while (true) {
    const ssize_t count = read(descriptor, piece.data(), piece.size());
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

std::error_code writeWholeFile(
    const std::filesystem::path& file, std::string_view bytes, WriteOptions options) {
  return writeWholeFile(file, [bytes](const TakePiece& take) { return take(bytes); }, options);
}

std::error_code writeWholeFile(
    const std::filesystem::path& file, const Produce& produce, WriteOptions options) {
  struct stat old{};
  const bool exists = stat(file.c_str(), &old) == 0;
  if (!exists && errno != ENOENT) {
    return lastError();
  }
  if (exists && !S_ISREG(old.st_mode)) {
    return writeInPlace(file, produce, options.access);
  }
  const std::filesystem::path target = targetOf(file);
  NewFile created(target, options.access == FileAccess::ownerOnly ? 0600 : 0666);
  if (exists && options.access == FileAccess::asBefore) {
    created.setMode(old.st_mode & 0777U);
  }
  const std::error_code error = created.fill(produce, options.durability);
  if (options.access == FileAccess::ownerOnly) {
    removeLeftovers(folderOf(target));
  }
  return error;
}

}  // namespace quillpad
