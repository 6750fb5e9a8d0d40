#include "home/commands/TextTable.h"

#include <algorithm>
#include <clocale>
#include <cwchar>

namespace quillpad::home {
namespace {

// The columns that the text takes on a terminal: two for the wide letters of East Asia, none for
// combining marks.
std::size_t displayWidth(const std::string& text) {
  static const locale_t utf8 = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  const locale_t previous = ::uselocale(utf8);
  std::size_t width = 0;
  std::mbstate_t state{};
  for (std::size_t at = 0; at < text.size();) {
    wchar_t character = 0;
    const std::size_t length = std::mbrtowc(&character, &text[at], text.size() - at, &state);
    if (length == 0 || length > text.size()) {  // a NUL, or no UTF-8
      state = {};
      at += 1;
      width += 1;
    } else {
      at += length;
      width += static_cast<std::size_t>(std::max(::wcwidth(character), 0));
    }
  }
  ::uselocale(previous);
  return width;
}

}  // namespace

std::string TextTable::text(std::size_t indent) const {
  std::vector<std::size_t> widths;
  for (const auto& row : rows_) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], displayWidth(printable(row[column].text)));
    }
  }

  std::string result;
  for (const auto& row : rows_) {
    std::string line(indent, ' ');
    for (std::size_t column = 0; column < row.size(); ++column) {
      const std::string shown = printable(row[column].text);
      const std::string fill(widths[column] - displayWidth(shown), ' ');
      line += column == 0 ? "" : "  ";
      line += row[column].alignedRight ? fill + shown : shown + fill;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    result += line + '\n';
  }
  return result;
}

std::string printable(std::string text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    const auto next = static_cast<unsigned char>(at + 1 < text.size() ? text[at + 1] : 0);
    if (byte < 0x20 || byte == 0x7F) {
      text[at] = ' ';
    } else if (byte == 0xC2 && next >= 0x80 && next < 0xA0) {  // U+0080 to U+009F
      text.replace(at, 2, 1, ' ');
    }
  }
  return text;
}

}  // namespace quillpad::home
