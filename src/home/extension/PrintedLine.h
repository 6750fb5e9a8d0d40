// What the extension printed, fit to be shown. Plain values.
#pragma once

#include <string>
#include <string_view>

namespace quillpad::home {

struct PrintedLine {
  enum class Stream { output, error };
  Stream stream = Stream::output;
  std::string text;
};

// The bytes as text for a terminal or a page: what is not UTF-8 becomes U+FFFD, a control character
// a blank.
std::string printableText(std::string_view bytes);

}  // namespace quillpad::home
