// The settings store that the host application shares with this extension.
#pragma once

#include <string_view>

namespace quillpad {

// The app group, which is the name of the shared settings store. Fixed when the program is built.
std::string_view appGroup();

}  // namespace quillpad
