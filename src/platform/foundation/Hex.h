// Bytes as two hexadecimal digits each. Functions of their argument alone, callable from any
// thread.
#pragma once

#include <string>
#include <string_view>

namespace quillpad {

inline std::string hexByte(unsigned char byte, std::string_view digits = "0123456789abcdef") {
  return {digits[byte >> 4], digits[byte & 0xF]};
}

inline std::string upperHexByte(unsigned char byte) { return hexByte(byte, "0123456789ABCDEF"); }

}  // namespace quillpad
