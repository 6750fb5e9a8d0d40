#include "platform/settings/UserDefaults.h"

#include <cstdlib>
#include <string>

#include "platform/settings/SettingsFile.h"

namespace quillpad {
namespace {

// Where applications keep their data; a relative XDG_DATA_HOME does not count.
std::filesystem::path dataFolder() {
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data != nullptr && *data == '/') {
    return data;
  }
  const char* home = std::getenv("HOME");
  if (home == nullptr || *home == '\0') {
    return {};
  }
  return std::filesystem::path(home) / ".local" / "share";
}

}  // namespace

std::filesystem::path UserDefaults::path(std::string_view suiteName) {
  const std::filesystem::path folder = dataFolder();
  if (folder.empty()) {
    return {};
  }
  return folder / "quillpad" / suiteName / "Library" / "Preferences" /
         (std::string(suiteName) + ".plist");
}

std::optional<UserDefaults> UserDefaults::open(std::string_view suiteName) {
  std::expected<Dictionary, SettingsFault> objects = readSettingsFile(path(suiteName));
  if (!objects) {
    return std::nullopt;
  }
  return UserDefaults(std::move(*objects));
}

std::optional<Value> UserDefaults::object(std::string_view key) const {
  const Value* value = objects_.find(key);
  if (value == nullptr) {
    return std::nullopt;
  }
  return *value;
}

}  // namespace quillpad
