#include "home/page/Markup.h"

#include <algorithm>
#include <vector>

#include "platform/foundation/Fatal.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/Value.h"
#include "platform/foundation/Xml.h"

namespace quillpad::home {

Markup escaped(std::string_view text) { return trusted(escapedXml(text)); }

Markup trusted(std::string html) { return Markup(std::move(html)); }

Markup filled(std::string_view page, std::initializer_list<Slot> slots, const Language& language) {
  std::size_t size = page.size();
  for (const Slot& slot : slots) {
    size += slot.value.html().size();
  }
  std::string html;
  html.reserve(size);
  for (;;) {
    const std::size_t open = page.find("{{");
    html += page.substr(0, open);
    if (open == std::string_view::npos) {
      return trusted(std::move(html));
    }
    const std::size_t close = page.find("}}", open);
    const std::string_view name = page.substr(open + 2, close - open - 2);
    page.remove_prefix(close + 2);
    if (name.starts_with('"')) {
      html += escapedXml(language.text(name.substr(1, name.size() - 2)));
      continue;
    }
    const auto slot = std::ranges::find(slots, name, &Slot::name);
    if (slot == slots.end()) {
      fatal("the page has no value for " + std::string(name));
    }
    html += slot->value.html();
  }
}

Markup filledIn(std::string_view text, std::initializer_list<Markup> values) {
  std::vector<std::string_view> html;
  for (const Markup& value : values) {
    html.emplace_back(value.html());
  }
  return trusted(withValues(escapedXml(text), html));
}

Markup textsOf(std::string_view script, const Language& language) {
  static constexpr std::string_view call = "text(\"";
  Dictionary texts;
  for (std::size_t at = 0; (at = script.find(call, at)) != script.npos;) {
    at += call.size();
    const std::string english(script.substr(at, script.find('"', at) - at));
    if (std::string text = language.text(english); text != english) {
      texts.set(english, std::move(text));
    }
  }
  std::string json = writeJson(texts, JsonLayout::compact).value_or("{}");
  for (std::size_t at = 0; (at = json.find('<', at)) != json.npos;) {
    json.replace(at, 1, "\\u003c");
  }
  return trusted(std::move(json));
}

}  // namespace quillpad::home
