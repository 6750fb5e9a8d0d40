#include "platform/text/Utf8.h"

#include <cstdint>

namespace quillpad::drawing {
namespace {

constexpr char32_t replacement = 0xFFFD;

// How a first byte goes on: the number of bytes that follow and the bounds of the first of them,
// which rule out overlong forms, surrogates and what lies beyond Unicode.
struct Lead {
  int following = -1;
  std::uint8_t least = 0x80;
  std::uint8_t most = 0xBF;
};

Lead leadOf(std::uint8_t byte) {
  if (byte < 0x80) {
    return {.following = 0};
  }
  if (byte >= 0xC2 && byte <= 0xDF) {
    return {.following = 1};
  }
  if (byte >= 0xE0 && byte <= 0xEF) {
    const std::uint8_t least = byte == 0xE0 ? 0xA0 : 0x80;
    const std::uint8_t most = byte == 0xED ? 0x9F : 0xBF;
    return {.following = 2, .least = least, .most = most};
  }
  if (byte >= 0xF0 && byte <= 0xF4) {
    const std::uint8_t least = byte == 0xF0 ? 0x90 : 0x80;
    const std::uint8_t most = byte == 0xF4 ? 0x8F : 0xBF;
    return {.following = 3, .least = least, .most = most};
  }
  return {};
}

}  // namespace

char32_t nextCharacter(std::string_view text, std::size_t& at) {
  const auto first = static_cast<std::uint8_t>(text[at++]);
  Lead lead = leadOf(first);
  if (lead.following <= 0) {
    return lead.following == 0 ? first : replacement;
  }
  char32_t character = first & (0x3FU >> static_cast<unsigned>(lead.following));
  for (int i = 0; i < lead.following; ++i) {
    if (at == text.size()) {
      return replacement;
    }
    const auto byte = static_cast<std::uint8_t>(text[at]);
    if (byte < lead.least || byte > lead.most) {
      return replacement;
    }
    character = (character << 6U) | (byte & 0x3FU);
    lead.least = 0x80;
    lead.most = 0xBF;
    ++at;
  }
  return character;
}

}  // namespace quillpad::drawing
