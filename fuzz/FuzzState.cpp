// Any text is a kept state or none, and a state is kept as it was.

#include "Target.h"
#include "home/extension/StateFile.h"

using namespace quillpad;

void quillpad::tryInput(std::string_view input) {
  const auto state = home::decodeState(input);
  if (!state) {
    return;
  }
  const auto kept = home::encodeState(*state);
  expect(kept.has_value());
  const auto again = home::decodeState(*kept);
  expect(again && home::encodeState(*again) == kept);
}
