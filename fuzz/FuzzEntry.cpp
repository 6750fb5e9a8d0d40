// Any file of a person is an entry or none, and an entry is sent on, printed and described.

#include "Target.h"
#include "home/commands/EntryText.h"
#include "platform/channel/Messages.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/Utf8.h"

using namespace quillpad;

void quillpad::tryInput(std::string_view input) {
  const auto document = readJson(input, JsonFragments::allowed);
  if (!document) {
    return;
  }
  const Decoder d(*document);
  const auto entry = d.result(channel::entryFrom(d));
  if (!entry) {
    return;
  }
  expect(isUtf8(home::describe(*entry)));
  const auto line = channel::encode(
      channel::NumberedRequest{1, channel::RenderRequest{"A", *entry, std::nullopt, ""}});
  const auto request = channel::decodeRequest(line);
  expect(request && channel::encode(*request) == line);
}
