#include "platform/settings/SettingsFile.h"

#include "platform/foundation/WholeFile.h"
#include "platform/settings/PropertyList.h"

namespace quillpad {

std::expected<Dictionary, SettingsFault> readSettingsFile(const std::filesystem::path& file) {
  const auto bytes = readWholeFile(file, largestSettingsFile);
  if (!bytes && bytes.error() == std::errc::no_such_file_or_directory) {
    return std::unexpected(SettingsFault::absent);
  }
  if (!bytes && bytes.error() == std::errc::file_too_large) {
    return std::unexpected(SettingsFault::tooLarge);
  }
  if (!bytes) {
    return std::unexpected(SettingsFault::unreadable);
  }
  const std::optional<Value> list = readPropertyList(*bytes);
  if (!list || list->as<Dictionary>() == nullptr) {
    return std::unexpected(SettingsFault::damaged);
  }
  return *list->as<Dictionary>();
}

}  // namespace quillpad
