// Any text is an address or none, and what an address says of itself is that address again.

#include "Target.h"
#include "platform/foundation/URL.h"

using namespace quillpad;

void quillpad::tryInput(std::string_view input) {
  const auto url = URL::parse(input);
  if (url) {
    expect(URL::parse(url->absoluteString()) == url);
  }
}
