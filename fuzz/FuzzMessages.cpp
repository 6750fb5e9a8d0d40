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
  if (const auto message = channel::decodeFromExtension(line)) {
    const std::string sent =
        std::visit([](const auto& content) { return channel::encode(content); }, *message);
    expect(channel::decodeFromExtension(sent).has_value());
  }
  return 0;
}
