#include "home/extension/PrintedLine.h"

#include <algorithm>

#include "platform/foundation/Utf8.h"

namespace quillpad::home {
namespace {

// The length of the first character; 0 where the bytes do not begin with one.
std::size_t firstCharacter(std::string_view bytes) {
  for (std::size_t length = 1; length <= std::min<std::size_t>(4, bytes.size()); ++length) {
    if (isUtf8(bytes.substr(0, length))) {
      return length;
    }
  }
  return 0;
}

bool isControl(std::string_view character) {
  const auto last = static_cast<unsigned char>(character.back());
  return character.size() == 1 ? last < 0x20 || last == 0x7F
                               : character.size() == 2 && character[0] == '\xC2' && last < 0xA0;
}

}  // namespace

std::string printableText(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const std::size_t length = firstCharacter(bytes);
    const std::string_view character = bytes.substr(0, length);
    if (length == 0) {
      text += "\uFFFD";
    } else {
      text += isControl(character) ? " " : character;
    }
    bytes.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return text;
}

}  // namespace quillpad::home
