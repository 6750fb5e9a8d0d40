// Prints what the extension answered, for a person or for a program.
#pragma once

#include <expected>

#include "home/commands/EntryText.h"
#include "home/commands/ExtensionClient.h"
#include "home/commands/Failure.h"
#include "home/commands/Files.h"
#include "platform/foundation/Json.h"

namespace quillpad::home {

Done printJson(const Value& value, JsonLayout layout);

template <class Answer>
Done printAnswer(const std::expected<Answer, Failure>& answer, bool json) {
  if (!answer) {
    return std::unexpected(answer.error());
  }
  if (!json) {
    return print(describe(*answer));
  }
  return printJson(channel::toValue(*answer), JsonLayout::compact);
}

}  // namespace quillpad::home
