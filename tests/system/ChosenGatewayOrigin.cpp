#include <cstdlib>

#include "gateway/GatewayOrigin.h"

namespace quillpad {

std::string_view gatewayOrigin() {
  const char* origin = std::getenv("TEST_GATEWAY_ORIGIN");
  return origin == nullptr ? "https://localhost:1" : origin;
}

}  // namespace quillpad
