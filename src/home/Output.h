// Where a command's result goes.
#pragma once

#include <string_view>

#include "home/Failure.h"

namespace home {

// Writes the text to standard output, all of it.
Done print(std::string_view text);

}  // namespace home
