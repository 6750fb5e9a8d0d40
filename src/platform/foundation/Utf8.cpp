#include "platform/foundation/Utf8.h"

#include <cstddef>
#include <cstdint>

namespace quillpad {

bool isUtf8(std::string_view bytes) {
  struct Lead {
    unsigned char first, last;           // of the leading byte
    unsigned char secondMin, secondMax;  // of the byte after it
    std::size_t length;
  };
  static constexpr Lead leads[] = {
      {0xC2, 0xDF, 0x80, 0xBF, 2},
      {0xE0, 0xE0, 0xA0, 0xBF, 3},
      {0xE1, 0xEC, 0x80, 0xBF, 3},
      {0xED, 0xED, 0x80, 0x9F, 3},
      {0xEE, 0xEF, 0x80, 0xBF, 3},
      {0xF0, 0xF0, 0x90, 0xBF, 4},
      {0xF1, 0xF3, 0x80, 0xBF, 4},
      {0xF4, 0xF4, 0x80, 0x8F, 4},
  };
  const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const auto lengthAt = [&](std::size_t i) -> std::size_t {
    if (byteAt(i) < 0x80) {
      return 1;
    }
    for (const Lead& lead : leads) {
      if (byteAt(i) < lead.first || byteAt(i) > lead.last) {
        continue;
      }
      if (i + lead.length > bytes.size()) {
        return 0;
      }
      if (byteAt(i + 1) < lead.secondMin || byteAt(i + 1) > lead.secondMax) {
        return 0;
      }
      for (std::size_t k = 2; k < lead.length; ++k) {
        if ((byteAt(i + k) & 0xC0) != 0x80) {
          return 0;
        }
      }
      return lead.length;
    }
    return 0;
  };
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t length = lengthAt(i);
    if (length == 0) {
      return false;
    }
    i += length;
  }
  return true;
}

void appendUtf8(std::string& text, char32_t character) {
  const auto tail = [&](int shift) {
    text += static_cast<char>(0x80 | ((character >> shift) & 0x3F));
  };
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += static_cast<char>(0xC0 | (character >> 6));
    tail(0);
  } else if (character < 0x10000) {
    text += static_cast<char>(0xE0 | (character >> 12));
    tail(6);
    tail(0);
  } else {
    text += static_cast<char>(0xF0 | (character >> 18));
    tail(12);
    tail(6);
    tail(0);
  }
}

}  // namespace quillpad
