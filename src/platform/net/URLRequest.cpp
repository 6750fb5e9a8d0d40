#include "platform/net/URLRequest.h"

#include <algorithm>
#include <cctype>

namespace quillpad {
namespace {

bool sameField(std::string_view left, std::string_view right) {
  return std::ranges::equal(left, right, [](unsigned char a, unsigned char b) {
    return std::tolower(a) == std::tolower(b);
  });
}

}  // namespace

void URLRequest::setValue(std::optional<std::string> value, std::string_view forHTTPHeaderField) {
  const auto named = [&](const auto& header) {
    return sameField(header.first, forHTTPHeaderField);
  };
  if (!value) {
    std::erase_if(headers, named);
    return;
  }
  const auto header = std::ranges::find_if(headers, named);
  if (header == headers.end()) {
    headers.emplace_back(forHTTPHeaderField, *std::move(value));
  } else {
    header->second = *std::move(value);
  }
}

}  // namespace quillpad
