#include "platform/foundation/Utf8.h"

#include <array>
#include <cstdint>
#include <unicode/utf8.h>

namespace quillpad {
namespace {

// The character at `at`, which is moved behind it; negative where the bytes are none.
UChar32 readCharacter(std::string_view text, std::size_t& at) {
  UChar32 character = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // in ICU's macro
  // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): in ICU's macro
  U8_NEXT(text.data(), at, text.size(), character);
#pragma GCC diagnostic pop
  return character;
}

}  // namespace

bool isUtf8(std::string_view bytes) {
  for (std::size_t at = 0; at < bytes.size();) {
    if (readCharacter(bytes, at) < 0) {
      return false;
    }
  }
  return true;
}

char32_t nextCharacter(std::string_view text, std::size_t& at) {
  const UChar32 character = readCharacter(text, at);
  return character < 0 ? U'\uFFFD' : static_cast<char32_t>(character);
}

void appendUtf8(std::string& text, char32_t character) {
  std::array<char, U8_MAX_LENGTH> bytes{};
  std::size_t length = 0;
  U8_APPEND_UNSAFE(bytes.data(), length, static_cast<UChar32>(character));
  text.append(bytes.data(), length);
}

}  // namespace quillpad
