#include "platform/foundation/Base64.h"

#include <cstddef>
#include <cstdint>

namespace quillpad {
namespace {

constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::string base64(std::string_view bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::string_view group = bytes.substr(i, 3);
    std::uint32_t bits = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      bits = bits << 8 | (k < group.size() ? static_cast<unsigned char>(group[k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      text += k <= group.size() ? alphabet[bits >> (18 - 6 * k) & 63] : '=';
    }
  }
  return text;
}

std::optional<std::string> bytesFromBase64(std::string_view text) {
  std::string bytes;
  std::uint32_t bits = 0;
  std::size_t digits = 0;
  std::size_t padding = 0;
  for (const char c : text) {
    if (c == ' ' || (c >= '\t' && c <= '\r')) {
      continue;
    }
    if (c == '=') {
      ++padding;
      continue;
    }
    const std::size_t digit = alphabet.find(c);
    if (digit == std::string_view::npos || padding > 0) {
      return std::nullopt;
    }
    bits = bits << 6 | static_cast<std::uint32_t>(digit);
    if (++digits % 4 == 0) {
      for (const int shift : {16, 8, 0}) {
        bytes += static_cast<char>(bits >> shift & 0xFF);
      }
    }
  }
  if (padding > 2 || (digits + padding) % 4 != 0) {
    return std::nullopt;
  }
  if (digits % 4 == 2) {
    bytes += static_cast<char>(bits >> 4 & 0xFF);
  }
  if (digits % 4 == 3) {
    bytes += static_cast<char>(bits >> 10 & 0xFF);
    bytes += static_cast<char>(bits >> 2 & 0xFF);
  }
  return bytes;
}

}  // namespace quillpad
