#include "home/extension/HomeLock.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/file.h>
#include <unistd.h>

#include "home/extension/PrintedLine.h"
#include "platform/os/UserFolders.h"
#include "platform/os/WholeFile.h"

namespace quillpad::home {
namespace {

constexpr std::size_t maxAddressBytes = 256;

// Without the page's key, as it may end up in a journal that others read.
std::string addressIn(const std::filesystem::path& place) {
  const std::string address = readWholeFile(place, maxAddressBytes).value_or("");
  return address.empty() ? "an address that it has not told yet"
                         : printableText(std::string_view(address).substr(0, address.find('?')));
}

}  // namespace

std::expected<HomeLock, std::string> HomeLock::take() {
  const auto folder = userStateFolder();
  if (!folder || makePrivateFolders(*folder)) {
    return HomeLock(FileDescriptor());
  }
  const std::filesystem::path place = *folder / "home.lock";
  FileDescriptor file(::open(place.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (file && ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    return std::unexpected(
        "a home screen is running already, at " + addressIn(place) +
        "; open that (with its key it stands in " + place.string() + "), or stop it first");
  }
  return HomeLock(std::move(file));
}

void HomeLock::setAddress(const std::string& address) const {
  if (file_ && ::ftruncate(file_.get(), 0) == 0) {
    [[maybe_unused]] const ssize_t written =
        ::pwrite(file_.get(), address.data(), address.size(), 0);
  }
}

}  // namespace quillpad::home
