#include "support/SharedSettings.h"

#include "platform/settings/UserDefaults.h"

namespace quillpad {

std::string_view appGroup() { return QUILLPAD_APP_GROUP; }

std::optional<Value> readSharedObject(std::string_view key) {
  const auto settings = UserDefaults::open(appGroup());
  return settings ? settings->object(key) : std::nullopt;
}

std::optional<std::string> readSharedString(std::string_view key) {
  const auto object = readSharedObject(key);
  const auto* text = object ? object->as<std::string>() : nullptr;
  return text != nullptr ? std::optional(*text) : std::nullopt;
}

}  // namespace quillpad
