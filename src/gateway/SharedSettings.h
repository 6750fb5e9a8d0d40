// What the host application leaves for the extension in the settings store that both share.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillpad {

// The text under the key, from the store as it is now; nothing where there is no store, no such
// key, or something else than a text. Callable from any thread.
std::optional<std::string> readSharedString(std::string_view key);

}  // namespace quillpad
