// Any bytes are read or refused, and what can be written again reads back the same.

#include "Target.h"
#include "platform/settings/PropertyList.h"

using namespace quillpad;

void quillpad::tryInput(std::string_view input) {
  const auto value = readPropertyList(input);
  if (!value) {
    return;
  }
  const auto written = writePropertyList(*value);
  if (!written) {
    return;  // a character that XML can name and not hold
  }
  const auto again = readPropertyList(*written);
  expect(again && writePropertyList(*again) == *written);
}
