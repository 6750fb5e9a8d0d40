// Any text is an address or none, and what an address says of itself is that address again.
#include <cstddef>
#include <cstdint>

#include "Expect.h"
#include "platform/foundation/URL.h"

using namespace quillpad;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto url = URL::parse({reinterpret_cast<const char*>(data), size});
  if (url) {
    expect(URL::parse(url->absoluteString()) == url);
  }
  return 0;
}
