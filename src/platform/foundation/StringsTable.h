// Tables of localised texts: `"key" = "value";` with C comments, in UTF-8 or, with a byte order
// mark, UTF-16.
#pragma once

#include <optional>
#include <string_view>

#include "platform/foundation/Value.h"

namespace quillpad {

// The table's texts by their keys, or nothing if the bytes are no such table. Of two entries with
// one key the first is kept. A function of its argument alone, callable from any thread.
std::optional<Dictionary> readStringsTable(std::string_view bytes);

}  // namespace quillpad
