// Any line on the channel is understood or refused, from either side, and what was understood is
// sent on as a line that is understood too.
#include <variant>

#include "Target.h"
#include "platform/channel/Messages.h"

using namespace quillpad;

void quillpad::tryInput(std::string_view input) {
  if (const auto request = channel::decodeRequest(input)) {
    expect(channel::decodeRequest(channel::encode(*request)).has_value());
  }
  using enum channel::Method;
  for (const auto method : {catalogue, snapshot, timeline, render, ping}) {
    const auto methodOfId = [method](std::uint64_t) { return std::optional(method); };
    const auto message = channel::decodeFromExtension(input, methodOfId);
    if (!message) {
      continue;
    }
    const auto* reply = std::get_if<channel::NumberedReply>(&*message);
    const std::string sent = reply != nullptr ? channel::encode(*reply)
                                              : channel::encode(std::get<TransferReport>(*message));
    expect(channel::decodeFromExtension(sent, methodOfId).has_value());
  }
}
