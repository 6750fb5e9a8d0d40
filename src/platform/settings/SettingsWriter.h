// Writing a shared settings store, as the host application does. Callable from any thread and
// process: writers wait for one another, and a reader sees the store before or after a change,
// never between.
#pragma once

#include <expected>
#include <functional>
#include <string>
#include <string_view>

#include "platform/foundation/Value.h"

namespace quillpad {

// Applies `change` to the store's objects and writes the whole store (mode 0600; temporary file,
// fsync, rename). Entries that `change` leaves alone are kept. A store that exists and cannot be
// read is left as it is and reported. On failure one sentence for a person, saying what, where and
// what to do.
std::expected<void, std::string> changeSettings(
    std::string_view suiteName, const std::function<void(Dictionary& objects)>& change);

}  // namespace quillpad
