// UTF-8 at the edges of the system. Functions of their arguments alone, callable from any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillpad {

// Whether the bytes are UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isUtf8(std::string_view bytes);

// The character at `at`, which is moved behind it and must be inside the text. Bytes that are no
// character count as U+FFFD, as many of them at a time as begin one.
char32_t nextCharacter(std::string_view text, std::size_t& at);

// Appends the character, which must be a Unicode scalar value.
void appendUtf8(std::string& text, char32_t character);

}  // namespace quillpad
