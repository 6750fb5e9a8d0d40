// Reading and writing JSON. Functions of their arguments alone, callable from any thread.
#pragma once

#include <cstddef>
#include <expected>
#include <limits>
#include <string>
#include <string_view>

#include "platform/foundation/Value.h"

namespace quillpad {

enum class JsonFragments { refused, allowed };

struct JsonError {
  // What the phone shows a person; where in the text, and why, stands in `reason`.
  std::string localizedDescription;
  std::string reason;
  std::size_t line = 0;  // of the text, from 1; 0 where it is not at one place
};

// Parses one JSON document in UTF-8: strict syntax, at most 512 containers deep, of two members
// with one key the first one kept, a whole number exact up to 38 digits. With fragments refused the
// top level must be an array or an object. A value takes some 20 times the memory of the shortest
// text that it can stand for, so text from outside is given a number of values to end at.
std::expected<Value, JsonError> readJson(
    std::string_view text,
    JsonFragments fragments,
    std::size_t maxValues = std::numeric_limits<std::size_t>::max());

// compact: without blanks, a slash as it is, a double in its shortest text that reads back as the
// same value (a whole one reads back as a whole number). pretty: as the phone writes, two blanks
// for each level, `"key" : value`, a slash escaped, a double with 17 digits.
enum class JsonLayout { compact, pretty };

// The value as JSON text. Fails for a value that JSON cannot hold (a date, bytes, a number that is
// not finite, text that is not UTF-8).
std::expected<std::string, JsonError> writeJson(const Value& value, JsonLayout layout);

}  // namespace quillpad
