// Reading and writing UTF-8, whatever bytes come. Pure functions.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace drawing {

// The character at `at`, which is moved behind it. Bytes that are no character count as U+FFFD, as
// many of them at a time as begin one.
char32_t nextCharacter(std::string_view text, std::size_t& at);

void append(std::string& text, char32_t character);

}  // namespace drawing
