// What a bundle's extension may do beyond answering the home screen, as its program declares it.
// Plain values.
#pragma once

#include <string>
#include <vector>

namespace quillpad::widgets {

struct Entitlements {
  std::vector<std::string> origins;      // whose ports it may connect to: "https://host:8443"
  std::vector<std::string> linkSchemes;  // that its views' links may have: "quillpad"
};

}  // namespace quillpad::widgets
