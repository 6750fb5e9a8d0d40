#include "home/extension/Links.h"

#include <algorithm>
#include <array>
#include <string>

#include "platform/foundation/URL.h"

namespace quillpad::home {
namespace {

// An extension could declare any of them.
constexpr std::array<std::string_view, 12> browserSchemes{
    "about",
    "blob",
    "chrome",
    "data",
    "file",
    "filesystem",
    "ftp",
    "http",
    "https",
    "javascript",
    "vbscript",
    "view-source"};

std::string lowercase(std::string text) {
  std::ranges::transform(text, text.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return text;
}

}  // namespace

bool leadsToApplication(const channel::CatalogueItem& widget, std::string_view link) {
  const auto url = URL::parse(link);
  if (!url || url->scheme().empty()) {
    return false;
  }
  const std::string scheme = lowercase(url->scheme());
  const bool declared =
      std::ranges::find(widget.linkSchemes, scheme, lowercase) != widget.linkSchemes.end();
  return declared && std::ranges::find(browserSchemes, scheme) == browserSchemes.end();
}

}  // namespace quillpad::home
