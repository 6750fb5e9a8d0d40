// Any bytes are read or refused, and what was read writes into text that reads and writes the same.

#include "Target.h"
#include "platform/foundation/Json.h"

using namespace quillpad;

void quillpad::tryInput(std::string_view input) {
  const auto value = readJson(input, JsonFragments::allowed);
  if (!value) {
    return;
  }
  for (const JsonLayout layout : {JsonLayout::compact, JsonLayout::pretty}) {
    const auto written = writeJson(*value, layout);
    expect(written.has_value());
    const auto again = readJson(*written, JsonFragments::allowed);
    expect(again && (layout == JsonLayout::pretty || writeJson(*again, layout) == *written));
  }
}
