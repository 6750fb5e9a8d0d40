// Text in XML and HTML documents. A pure function.
#pragma once

#include <string>
#include <string_view>

namespace quillpad {

// The text with its markup escaped, for content and quoted attributes. What XML does not allow,
// control characters and bytes that are no UTF-8, becomes U+FFFD.
std::string escapedXml(std::string_view text);

}  // namespace quillpad
