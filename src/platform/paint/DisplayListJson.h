// The display list as JSON, for tests and for whoever draws it elsewhere. A pure function.
#pragma once

#include <string>

#include "platform/paint/DisplayList.h"

namespace quillpad::drawing {

// The list in one appearance: one item a line, lengths in points with at most three decimals. An
// item that is masked has its masks under "clips".
std::string toJson(const DisplayList& list, ui::Appearance appearance);

}  // namespace quillpad::drawing
