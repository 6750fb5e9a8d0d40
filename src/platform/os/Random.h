// Texts that nobody can guess. Callable from any thread.
#pragma once

#include <cstddef>
#include <string>

namespace quillpad {

// So many random bytes of the system, at most 256, in hexadecimal.
std::string randomHex(std::size_t bytes);

}  // namespace quillpad
