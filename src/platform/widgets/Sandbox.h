// Closes to this process what a widget has no use for: other programs and processes, all system
// calls but those that computing, reading files and fetching need, and by TCP the ports that are
// not named. Whoever breaks into the process finds no way on. A kernel that has no Landlock, no TCP
// in it, or no filters of system calls leaves open what these close.
#pragma once

#include <expected>
#include <string>
#include <vector>

namespace quillpad::widgets {

// For good. To be called at the start of the program, while it has one thread. A sentence for a
// person where the kernel could close it and did not.
std::expected<void, std::string> enterSandbox(const std::vector<std::string>& origins);

}  // namespace quillpad::widgets
