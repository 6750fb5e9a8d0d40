// A fuzz target is one function, which is given any bytes.
#pragma once

#include <cstdlib>
#include <string_view>

namespace quillpad {

void tryInput(std::string_view input);

// Where a promise does not hold the target aborts, and the fuzzing engine keeps the input.
inline void expect(bool holds) {
  if (!holds) {
    std::abort();
  }
}

// Takes the first byte, by which a target chooses what else varies; 0 where there is none.
inline unsigned takeChoice(std::string_view& input) {
  const unsigned choice = input.empty() ? 0U : static_cast<unsigned char>(input.front());
  input.remove_prefix(input.empty() ? 0 : 1);
  return choice;
}

}  // namespace quillpad
