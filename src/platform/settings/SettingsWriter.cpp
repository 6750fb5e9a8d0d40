#include "platform/settings/SettingsWriter.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>

#include "platform/foundation/FileDescriptor.h"
#include "platform/foundation/UserFolders.h"
#include "platform/foundation/WholeFile.h"
#include "platform/settings/PropertyList.h"
#include "platform/settings/UserDefaults.h"

namespace quillpad {
namespace {

std::unexpected<std::string> refused(
    const std::filesystem::path& file, std::string_view why, std::string_view remedy) {
  return std::unexpected(
      "The settings in " + file.string() + " were not changed: " + std::string(why) + "; " +
      std::string(remedy) + ".");
}

std::error_code lastError() { return {errno, std::system_category()}; }

// The folders that are missing are made for their owner alone.
std::error_code makePrivateFolders(const std::filesystem::path& folder) {
  std::filesystem::path made;
  for (const std::filesystem::path& part : folder) {
    made /= part;
    if (mkdir(made.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
      return lastError();
    }
  }
  return {};
}

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

std::unexpected<std::string> refusedFor(const std::filesystem::path& file, SettingsError error) {
  if (error == SettingsError::unreadable) {
    return refused(file, "the file cannot be read", "check who owns it and its mode");
  }
  if (error == SettingsError::tooLarge) {
    return refused(file, "the file is larger than 1 MiB", "move it away and sign in again");
  }
  return refused(
      file, "the file is not a property list with a dictionary", "move it away and sign in again");
}

}  // namespace

std::expected<void, std::string> changeSettings(
    std::string_view suiteName, const std::function<void(Dictionary& objects)>& change) {
  const std::filesystem::path file = UserDefaults::path(suiteName);
  if (file.empty()) {
    return std::unexpected("There is no place for settings: set HOME or XDG_DATA_HOME.");
  }
  constexpr std::string_view checkFolder = "check that its folder can be written";
  if (const std::error_code error = makePrivateFolders(file.parent_path())) {
    return refused(file, error.message(), checkFolder);
  }
  const std::filesystem::path lockFile = lockOf(file);
  const std::expected<FileDescriptor, std::error_code> lock = locked(lockFile);
  if (!lock) {
    return refused(
        file, lock.error().message(), "check that " + lockFile.string() + " can be written");
  }

  const auto store = UserDefaults::open(suiteName);
  if (!store && store.error() != SettingsError::absent) {
    return refusedFor(file, store.error());
  }
  Dictionary objects = store ? store->objects() : Dictionary();
  change(objects);

  const std::expected<std::string, std::string> list = writePropertyList(std::move(objects));
  if (!list) {
    return refused(file, "what is to be kept cannot be, as " + list.error(), "give another value");
  }
  if (list->size() > maxSettingsBytes) {
    return refused(file, "they would be larger than 1 MiB", "give a shorter value");
  }
  if (const std::error_code error = writeWholeFile(file, *list)) {
    return refused(file, error.message(), "check that its folder can be written and is not full");
  }
  return {};
}

}  // namespace quillpad
