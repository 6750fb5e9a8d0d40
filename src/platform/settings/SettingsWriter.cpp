#include "platform/settings/SettingsWriter.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>

#include "platform/foundation/NumberText.h"
#include "platform/os/FileDescriptor.h"
#include "platform/os/UserFolders.h"
#include "platform/os/WholeFile.h"
#include "platform/settings/PropertyList.h"
#include "platform/settings/UserDefaults.h"

namespace quillpad {
namespace {

std::unexpected<std::string> refused(
    const std::filesystem::path& file, const std::string& whyAndRemedy) {
  return std::unexpected(
      "The settings in " + file.string() + " were not changed: " + whyAndRemedy + ".");
}

std::error_code lastError() { return {errno, std::system_category()}; }

// Not beside the store: an extension reads there, and who can open a file can hold its lock for
// ever.
std::filesystem::path lockOf(const std::filesystem::path& file) {
  const auto folder = userStateFolder();
  return folder.value_or(file.parent_path()) / (file.filename().string() + ".lock");
}

// Waits until no other writer holds the lock; the lock ends with the descriptor.
std::expected<FileDescriptor, std::error_code> locked(const std::filesystem::path& lock) {
  if (const std::error_code error = makePrivateFolders(lock.parent_path())) {
    return std::unexpected(error);
  }
  FileDescriptor descriptor(
      open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
  if (!descriptor) {
    return std::unexpected(lastError());
  }
  while (flock(descriptor.get(), LOCK_EX) != 0) {
    if (errno != EINTR) {
      return std::unexpected(lastError());
    }
  }
  return descriptor;
}

}  // namespace

std::expected<void, std::string> changeSettings(
    std::string_view suiteName, const std::function<void(Dictionary& objects)>& change) {
  const std::filesystem::path file = UserDefaults::path(suiteName);
  if (file.empty()) {
    return std::unexpected("There is no place for settings: set HOME or XDG_DATA_HOME.");
  }
  constexpr const char* checkFolder = "; check that its folder can be written";
  if (const std::error_code error = makePrivateFolders(file.parent_path())) {
    return refused(file, error.message() + checkFolder);
  }
  const std::filesystem::path lockFile = lockOf(file);
  const std::expected<FileDescriptor, std::error_code> lock = locked(lockFile);
  if (!lock) {
    return refused(
        file, lock.error().message() + "; check that " + lockFile.string() + " can be written");
  }

  const auto store = UserDefaults::open(suiteName);
  if (!store && store.error() != SettingsError::absent) {
    return refused(file, describe(store.error()));
  }
  Dictionary objects = store ? store->objects() : Dictionary();
  change(objects);

  const std::expected<std::string, std::string> list = writePropertyList(std::move(objects));
  if (!list) {
    return refused(file, "the value cannot be kept, as " + list.error() + "; give another one");
  }
  if (list->size() > maxSettingsBytes) {
    return refused(
        file,
        "they would be larger than " + bytesText(maxSettingsBytes) + "; give a shorter value");
  }
  if (const std::error_code error = writeWholeFile(file, *list)) {
    return refused(file, error.message() + checkFolder + " and is not full");
  }
  return {};
}

}  // namespace quillpad
