#include "platform/foundation/StringsTable.h"

#include <charconv>
#include <string>
#include <vector>

#include "platform/foundation/Utf8.h"

namespace quillpad {
namespace {

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

std::optional<std::string> utf8FromUtf16(std::string_view bytes, bool bigEndian) {
  if (bytes.size() % 2 != 0) {
    return std::nullopt;
  }
  const auto unitAt = [&](std::size_t i) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    return static_cast<char32_t>(bigEndian ? first << 8 | second : second << 8 | first);
  };
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    char32_t character = unitAt(i);
    if (isHighSurrogate(character) && i + 2 < bytes.size() && isLowSurrogate(unitAt(i + 2))) {
      i += 2;
      character = 0x10000 + ((character - 0xD800) << 10) + (unitAt(i) - 0xDC00);
    } else if (isHighSurrogate(character) || isLowSurrogate(character)) {
      return std::nullopt;
    }
    appendUtf8(text, character);
  }
  return text;
}

std::optional<std::string> decoded(std::string_view bytes) {
  if (bytes.starts_with("\xFE\xFF")) {
    return utf8FromUtf16(bytes.substr(2), true);
  }
  if (bytes.starts_with("\xFF\xFE")) {
    return utf8FromUtf16(bytes.substr(2), false);
  }
  if (bytes.starts_with("\xEF\xBB\xBF")) {
    bytes.remove_prefix(3);
  }
  if (!isUtf8(bytes)) {
    return std::nullopt;
  }
  return std::string(bytes);
}

// Reads one table from front to end. A step that fails leaves nothing to go on with.
class TableReader {
 public:
  explicit TableReader(std::string_view text) : rest_(text) {}

  std::optional<Dictionary> read() {
    std::vector<Dictionary::Member> members;
    while (skipBlanks() && !rest_.empty()) {
      std::optional<std::string> key = word();
      if (!key || !mark('=')) {
        return std::nullopt;
      }
      std::optional<std::string> value = word();
      if (!value || !mark(';')) {
        return std::nullopt;
      }
      members.push_back({std::move(*key), std::move(*value)});
    }
    if (!rest_.empty()) {
      return std::nullopt;
    }
    return Dictionary::ofMembers(std::move(members));
  }

 private:
  // Skips white space and comments; false where a comment does not end.
  bool skipBlanks() {
    while (!rest_.empty()) {
      std::size_t end = 0;
      if (rest_.starts_with("/*")) {
        end = rest_.find("*/", 2);
        if (end == std::string_view::npos) {
          return false;
        }
        end += 2;
      } else if (rest_.starts_with("//")) {
        end = std::min(rest_.find_first_of("\r\n"), rest_.size());
      } else {
        end = std::min(rest_.find_first_not_of(" \t\r\n\v\f"), rest_.size());
        if (end == 0) {
          return true;
        }
      }
      rest_.remove_prefix(end);
    }
    return true;
  }

  bool mark(char sign) {
    if (!skipBlanks() || !rest_.starts_with(sign)) {
      return false;
    }
    rest_.remove_prefix(1);
    return true;
  }

  // A text in quotes, or a bare word of letters, digits and a few signs.
  std::optional<std::string> word() {
    if (!skipBlanks()) {
      return std::nullopt;
    }
    if (rest_.starts_with('"')) {
      return quoted();
    }
    const std::size_t end = std::min(
        rest_.find_first_not_of(
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_.$:-"),
        rest_.size());
    if (end == 0) {
      return std::nullopt;
    }
    std::string text(rest_.substr(0, end));
    rest_.remove_prefix(end);
    return text;
  }

  std::optional<std::string> quoted() {
    rest_.remove_prefix(1);
    std::string text;
    while (!rest_.empty()) {
      const char c = rest_.front();
      rest_.remove_prefix(1);
      if (c == '"') {
        return text;
      }
      if (c != '\\') {
        text += c;
      } else if (!appendEscaped(text)) {
        return std::nullopt;
      }
    }
    return std::nullopt;
  }

  bool appendEscaped(std::string& text) {
    if (rest_.empty()) {
      return false;
    }
    const char c = rest_.front();
    rest_.remove_prefix(1);
    switch (c) {
      case 'n':
        text += '\n';
        return true;
      case 'r':
        text += '\r';
        return true;
      case 't':
        text += '\t';
        return true;
      case 'U':
      case 'u':
        return appendUnit(text);
      default:
        text += c;
        return true;
    }
  }

  bool appendUnit(std::string& text) {
    const std::string_view digits = rest_.substr(0, 4);
    unsigned unit = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16);
    if (error != std::errc() || end != digits.data() + 4) {
      return false;
    }
    if (isHighSurrogate(unit) || isLowSurrogate(unit)) {
      return false;
    }
    appendUtf8(text, unit);
    rest_.remove_prefix(4);
    return true;
  }

  std::string_view rest_;
};

}  // namespace

std::optional<Dictionary> readStringsTable(std::string_view bytes) {
  const std::optional<std::string> text = decoded(bytes);
  if (!text) {
    return std::nullopt;
  }
  return TableReader(*text).read();
}

}  // namespace quillpad
