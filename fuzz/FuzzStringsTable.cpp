// Any bytes are a table of UTF-8 texts, or none.
#include <cstddef>
#include <cstdint>

#include "Expect.h"
#include "platform/foundation/StringsTable.h"
#include "platform/foundation/Utf8.h"

using namespace quillpad;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto table = readStringsTable({reinterpret_cast<const char*>(data), size});
  if (!table) {
    return 0;
  }
  for (const Dictionary::Member& member : *table) {
    expect(isUtf8(member.key) && isUtf8(*member.value.as<std::string>()));
  }
  return 0;
}
