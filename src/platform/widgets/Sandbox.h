// Closes to this process what a widget has no use for: other programs and processes, most of the
// kernel, and the network but for the ports that are named and the lookup of names. Whoever breaks
// into the process finds no way on. What the kernel lacks stays open.
#pragma once

#include <string>
#include <vector>

namespace quillpad::widgets {

// For good. To be called at the start of the program, while it has one thread.
void enterSandbox(const std::vector<std::string>& origins);

}  // namespace quillpad::widgets
