// Where the invoicing service's gateway is.
#pragma once

#include <string_view>

namespace quillpad {

// The gateway's origin, to which a request's path is appended. Fixed when the program is built;
// alone in its file so that a test program can link an origin of its own.
std::string_view gatewayOrigin();

}  // namespace quillpad
