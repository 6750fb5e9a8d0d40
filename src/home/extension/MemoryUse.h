// How much memory a process has to itself.
#pragma once

#include <cstddef>
#include <sys/types.h>

namespace quillpad::home {

// The bytes in memory that belong to no file, as the phone counts them; 0 where the process is
// gone.
std::size_t privateMemory(pid_t process);

}  // namespace quillpad::home
