#include "home/extension/HomeLock.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

#include "home/extension/PrintedLine.h"
#include "platform/foundation/UserFolders.h"

namespace quillpad::home {
namespace {

constexpr std::size_t maxAddressBytes = 256;

std::string addressIn(const FileDescriptor& file) {
  std::array<char, maxAddressBytes> bytes{};
  const ssize_t count = ::pread(file.get(), bytes.data(), bytes.size(), 0);
  return count <= 0 ? "an address that it has not told yet"
                    : printableText({bytes.data(), static_cast<std::size_t>(count)});
}

}  // namespace

std::expected<HomeLock, std::string> HomeLock::take() {
  const auto folder = userStateFolder();
  std::error_code error;
  if (!folder || (std::filesystem::create_directories(*folder, error), error)) {
    return HomeLock(FileDescriptor());
  }
  FileDescriptor file(
      ::open((*folder / "home.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (file && ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    return std::unexpected(
        "a home screen is running already, at " + addressIn(file) +
        "; open that, or stop it first");
  }
  return HomeLock(std::move(file));
}

void HomeLock::tell(const std::string& address) const {
  if (file_ && ::ftruncate(file_.get(), 0) == 0) {
    [[maybe_unused]] const ssize_t told = ::pwrite(file_.get(), address.data(), address.size(), 0);
  }
}

}  // namespace quillpad::home
