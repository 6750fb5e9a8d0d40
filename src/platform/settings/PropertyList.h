// Property lists in XML, in which the settings store is kept. Functions of their arguments alone,
// callable from any thread.
#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/Value.h"

namespace quillpad {

// The value of a property list, or nothing if the text is none: cut off, not XML, an unknown
// element, a number or date of no known form, text that is not Unicode, over 512 containers deep.
// Of two entries with one key the first is kept.
std::optional<Value> readPropertyList(std::string_view text);

// The value as a property list, dates to the second. Fails for what a property list cannot hold
// (JSON's null, control characters, text that is not UTF-8), with a sentence that says so and
// quotes nothing.
std::expected<std::string, std::string> writePropertyList(const Value& value);

}  // namespace quillpad
