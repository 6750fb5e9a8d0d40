// One request as its sender builds it. A plain value.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/foundation/URL.h"

namespace quillpad {

struct URLRequest {
  explicit URLRequest(URL address) : url(std::move(address)) {}

  // Sets the field, whose name is compared without regard to case; no value takes it away.
  void setValue(std::optional<std::string> value, std::string_view forHTTPHeaderField);

  URL url;
  std::string httpMethod = "GET";
  std::vector<std::pair<std::string, std::string>> headers;
  std::string httpBody;
};

}  // namespace quillpad
