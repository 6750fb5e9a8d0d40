#include "home/page/Markup.h"

#include <algorithm>

#include "platform/foundation/Fatal.h"

namespace quillpad::home {

Markup escaped(std::string_view text) {
  Markup markup;
  markup.html.reserve(text.size());
  for (const char character : text) {
    switch (character) {
      case '&':
        markup.html += "&amp;";
        break;
      case '<':
        markup.html += "&lt;";
        break;
      case '>':
        markup.html += "&gt;";
        break;
      case '"':
        markup.html += "&quot;";
        break;
      case '\'':
        markup.html += "&#39;";
        break;
      default:
        markup.html += character;
    }
  }
  return markup;
}

Markup filled(std::string_view page, std::initializer_list<Slot> slots) {
  Markup result;
  for (;;) {
    const std::size_t open = page.find("{{");
    result.html += page.substr(0, open);
    if (open == std::string_view::npos) {
      return result;
    }
    const std::size_t close = page.find("}}", open);
    const std::string_view name = page.substr(open + 2, close - open - 2);
    const auto slot = std::ranges::find(slots, name, &Slot::name);
    if (slot == slots.end()) {
      fatal("the page has no value for " + std::string(name));
    }
    result.html += slot->value.html;
    page.remove_prefix(close + 2);
  }
}

}  // namespace quillpad::home
