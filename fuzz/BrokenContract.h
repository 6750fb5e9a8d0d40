// How a target goes on where the product ends its process on purpose: the linker puts these in the
// place of quillpad's `fatal` and `fatalAt`.
#pragma once

namespace quillpad {

// The process would have ended, with its one line.
struct BrokenContract {};

}  // namespace quillpad
