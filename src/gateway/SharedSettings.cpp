#include "gateway/SharedSettings.h"

#include "platform/settings/UserDefaults.h"
#include "support/AppGroup.h"

namespace quillpad {

std::optional<std::string> readSharedString(std::string_view key) {
  const auto settings = UserDefaults::open(appGroup());
  const auto object = settings ? settings->object(key) : std::nullopt;
  const auto* text = object ? object->as<std::string>() : nullptr;
  return text != nullptr ? std::optional(*text) : std::nullopt;
}

}  // namespace quillpad
