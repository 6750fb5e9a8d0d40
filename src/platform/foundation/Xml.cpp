#include "platform/foundation/Xml.h"

#include <cstddef>

#include "platform/foundation/Utf8.h"

namespace quillpad {

std::string escapedXml(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const char32_t character = nextCharacter(text, at);
    switch (character) {
      case U'&':
        result += "&amp;";
        break;
      case U'<':
        result += "&lt;";
        break;
      case U'>':
        result += "&gt;";
        break;
      case U'"':
        result += "&quot;";
        break;
      case U'\'':
        result += "&#39;";
        break;
      default: {
        const bool control =
            character < 0x20 && character != '\t' && character != '\n' && character != '\r';
        const bool allowed = !control && (character & 0xFFFE) != 0xFFFE;
        appendUtf8(result, allowed ? character : U'\uFFFD');
      }
    }
  }
  return result;
}

}  // namespace quillpad
