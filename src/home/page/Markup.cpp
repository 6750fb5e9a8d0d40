#include "home/page/Markup.h"

#include <algorithm>

#include "platform/foundation/Fatal.h"
#include "platform/foundation/Xml.h"

namespace quillpad::home {

Markup escaped(std::string_view text) { return trusted(escapedXml(text)); }

Markup trusted(std::string html) { return Markup(std::move(html)); }

Markup filled(std::string_view page, std::initializer_list<Slot> slots) {
  std::string html;
  for (;;) {
    const std::size_t open = page.find("{{");
    html += page.substr(0, open);
    if (open == std::string_view::npos) {
      return trusted(std::move(html));
    }
    const std::size_t close = page.find("}}", open);
    const std::string_view name = page.substr(open + 2, close - open - 2);
    const auto slot = std::ranges::find(slots, name, &Slot::name);
    if (slot == slots.end()) {
      fatal("the page has no value for " + std::string(name));
    }
    html += slot->value.html();
    page.remove_prefix(close + 2);
  }
}

}  // namespace quillpad::home
