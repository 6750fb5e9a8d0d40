#include "platform/os/Random.h"

#include <array>
#include <sys/random.h>

#include "platform/foundation/Fatal.h"
#include "platform/foundation/Hex.h"

namespace quillpad {

std::string randomHex(std::size_t bytes) {
  std::array<unsigned char, 256> random{};
  if (bytes > random.size() || getrandom(random.data(), bytes, 0) != static_cast<ssize_t>(bytes)) {
    fatal("the system gives no random bytes");
  }
  std::string text;
  for (std::size_t i = 0; i < bytes; ++i) {
    text += hexByte(random[i]);
  }
  return text;
}

}  // namespace quillpad
