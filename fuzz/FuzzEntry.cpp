// Any file of a person is an entry or none, and an entry is sent on, printed and described.
#include <cstddef>
#include <cstdint>

#include "Expect.h"
#include "home/commands/EntryText.h"
#include "platform/channel/Messages.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/Utf8.h"

using namespace quillpad;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto document =
      readJson({reinterpret_cast<const char*>(data), size}, JsonFragments::allowed);
  if (!document) {
    return 0;
  }
  const Decoder d(*document);
  const auto entry = d.result(channel::entryFrom(d));
  if (!entry) {
    return 0;
  }
  expect(isUtf8(home::describe(*entry)));
  const auto line = channel::encode(
      channel::NumberedRequest{1, channel::RenderRequest{"A", *entry, std::nullopt, ""}});
  const auto request = channel::decodeRequest(line);
  expect(request && channel::encode(*request) == line);
  return 0;
}
