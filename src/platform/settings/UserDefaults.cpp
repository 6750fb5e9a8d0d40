#include "platform/settings/UserDefaults.h"

#include "platform/foundation/NumberText.h"
#include "platform/os/UserFolders.h"
#include "platform/os/WholeFile.h"
#include "platform/settings/PropertyList.h"

namespace quillpad {

std::string describe(SettingsError error) {
  switch (error) {
    case SettingsError::absent:
      return "there is no such file; sign in";
    case SettingsError::unreadable:
      return "the file cannot be read; check who owns it and its mode";
    case SettingsError::tooLarge:
      return "the file is larger than " + bytesText(maxSettingsBytes) +
             "; move it away and sign in again";
    case SettingsError::damaged:
      break;
  }
  return "the file is not a property list with a dictionary; move it away and sign in again";
}

std::filesystem::path UserDefaults::path(std::string_view suiteName) {
  const auto folder = userDataFolder();
  if (!folder) {
    return {};
  }
  return *folder / suiteName / "Library" / "Preferences" / (std::string(suiteName) + ".plist");
}

std::expected<UserDefaults, SettingsError> UserDefaults::open(std::string_view suiteName) {
  const auto bytes = readWholeFile(path(suiteName), maxSettingsBytes);
  if (!bytes && bytes.error() == std::errc::no_such_file_or_directory) {
    return std::unexpected(SettingsError::absent);
  }
  if (!bytes && bytes.error() == std::errc::file_too_large) {
    return std::unexpected(SettingsError::tooLarge);
  }
  if (!bytes) {
    return std::unexpected(SettingsError::unreadable);
  }
  const std::optional<Value> list = readPropertyList(*bytes);
  const auto* objects = list ? list->as<Dictionary>() : nullptr;
  if (objects == nullptr) {
    return std::unexpected(SettingsError::damaged);
  }
  return UserDefaults(*objects);
}

std::optional<Value> UserDefaults::object(std::string_view key) const {
  const Value* value = objects_.find(key);
  if (value == nullptr) {
    return std::nullopt;
  }
  return *value;
}

}  // namespace quillpad
