// Any line on the channel is understood or refused, from either side, and what was understood is
// sent on as a line that is understood too.
#include <cstddef>
#include <cstdint>
#include <variant>

#include "Expect.h"
#include "platform/channel/Messages.h"

using namespace quillpad;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view line(reinterpret_cast<const char*>(data), size);
  if (const auto request = channel::decodeRequest(line)) {
    expect(channel::decodeRequest(channel::encode(*request)).has_value());
  }
  for (const auto method :
       {channel::Method::catalogue,
        channel::Method::snapshot,
        channel::Method::timeline,
        channel::Method::render,
        channel::Method::ping}) {
    const auto methodOfId = [method](std::uint64_t) { return std::optional(method); };
    const auto message = channel::decodeFromExtension(line, methodOfId);
    if (!message) {
      continue;
    }
    const auto* reply = std::get_if<channel::NumberedReply>(&*message);
    const std::string sent = reply != nullptr
                                 ? channel::encode(*reply)
                                 : channel::encode(std::get<channel::TransferNotice>(*message));
    expect(channel::decodeFromExtension(sent, methodOfId).has_value());
  }
  return 0;
}
