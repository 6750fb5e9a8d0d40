// Views as an outline for a person to read: one view a line, indented, with its modifiers in the
// order applied.
#pragma once

#include <string>

#include "platform/ui/View.h"

namespace quillpad {

std::string outline(const ui::View& view);

}  // namespace quillpad
