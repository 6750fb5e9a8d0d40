// Bytes as text in base 64. Functions of their argument alone, callable from any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillpad {

// The bytes in base 64, padded, in one line.
std::string base64(std::string_view bytes);

// The bytes that the text stands for, white space skipped; nothing if it is not base 64.
std::optional<std::string> bytesFromBase64(std::string_view text);

}  // namespace quillpad
