// What the application leaves for the extension in the settings store that both share, read from
// the store as it is now. Callable from any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/Value.h"

namespace quillpad {

// The app group, which is the name of the shared store. Fixed when the program is built.
std::string_view appGroup();

// The keys of the store; the currency is a member of the business.
inline constexpr const char* businessIdKey = "businessId";
inline constexpr const char* tokenKey = "token";
inline constexpr const char* businessKey = "currentBusiness";
inline constexpr const char* currencyKey = "currency";

// The object under the key; nothing where there is no store or no such key.
std::optional<Value> readSharedObject(std::string_view key);

// The text under the key; nothing where it is absent or something else than a text.
std::optional<std::string> readSharedString(std::string_view key);

}  // namespace quillpad
