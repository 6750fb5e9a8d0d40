// Numbers read out of text and put into sentences, independent of the locale. Functions of their
// argument alone, callable from any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/Value.h"

namespace quillpad {

// Whether it is one of 0 to 9.
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The number that the whole text is ("." as decimal point; exponents, hexadecimal, "inf" and "nan"
// are numbers too; out of range gives infinity or zero), or nothing: no blanks, no separators.
std::optional<double> doubleFromText(std::string_view text);

// The whole number that the whole text is in decimal digits, at most 38 of them, "-" before them
// where it is negative; or nothing.
std::optional<Number> wholeNumberFromText(std::string_view text);

// The whole number that the text begins with: leading white space skipped, an optional sign,
// digits; 0 without digits, the nearest bound where it does not fit.
std::int64_t integerValue(std::string_view text);

// So many bytes in the largest unit of which they are at least one, rounded down: "8 MiB", "64
// KiB".
std::string bytesText(std::size_t bytes);

}  // namespace quillpad
