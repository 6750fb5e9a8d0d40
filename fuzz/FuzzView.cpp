// Any JSON is a view or none, and a view writes itself as the JSON that reads back the same.

#include "Target.h"
#include "platform/foundation/Json.h"
#include "platform/ui/ViewCodec.h"

using namespace quillpad;

void quillpad::tryInput(std::string_view input) {
  const auto value = readJson(input, JsonFragments::allowed);
  if (!value) {
    return;
  }
  if (const auto view = ui::viewFromValue(*value)) {
    const Value written = ui::toValue(*view);
    const auto again = ui::viewFromValue(written);
    expect(again && ui::toValue(*again) == written);
  }
}
