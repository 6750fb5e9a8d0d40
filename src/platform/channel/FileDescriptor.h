// An open file descriptor that its owner closes, as the rest of the platform has it.
#pragma once

#include "platform/foundation/FileDescriptor.h"

namespace channel {

using foundation::FileDescriptor;

}  // namespace channel
