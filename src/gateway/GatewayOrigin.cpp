#include "gateway/GatewayOrigin.h"

namespace quillpad {

std::string_view gatewayOrigin() { return QUILLPAD_GATEWAY_ORIGIN; }

}  // namespace quillpad
