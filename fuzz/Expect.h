// What a fuzzer says when a promise does not hold: it aborts, and the fuzzing engine keeps the
// input.
#pragma once

#include <cstdlib>

namespace quillpad {

inline void expect(bool holds) {
  if (!holds) {
    std::abort();
  }
}

}  // namespace quillpad
