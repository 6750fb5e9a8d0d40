#include "home/commands/Printing.h"

namespace quillpad::home {

Done printJson(const Value& value, JsonLayout layout) {
  const auto text = writeJson(value, layout);
  if (!text) {
    return failure(
        ExitStatus::notPossible, "the answer cannot be written as JSON: " + text.error().reason);
  }
  return print(*text + '\n');
}

}  // namespace quillpad::home
