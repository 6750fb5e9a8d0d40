// A uniform resource locator, parsed as the phone's plain `URL(string:)` does: characters that may
// not stand in a path, query or fragment are percent-encoded, a bad scheme, host or port gives no
// URL. An immutable value.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillpad {

class URL {
 public:
  // The URL that the text names, or nothing.
  static std::optional<URL> parse(std::string_view text);

  const std::string& absoluteString() const { return text_; }
  // Empty where the URL has none.
  const std::string& scheme() const { return scheme_; }
  const std::string& host() const { return host_; }

  friend bool operator==(const URL&, const URL&) = default;

 private:
  URL() = default;
  std::string text_;
  std::string scheme_;
  std::string host_;
};

}  // namespace quillpad
