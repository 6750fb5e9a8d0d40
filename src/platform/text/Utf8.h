// Reading UTF-8, whatever bytes come. A pure function.
#pragma once

#include <cstddef>
#include <string_view>

namespace quillpad::drawing {

// The character at `at`, which is moved behind it. Bytes that are no character count as U+FFFD, as
// many of them at a time as begin one.
char32_t nextCharacter(std::string_view text, std::size_t& at);

}  // namespace quillpad::drawing
