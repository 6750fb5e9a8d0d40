// What the fuzzing engine calls, or SeedsOnly in its place.
#include <cstddef>
#include <cstdint>

#include "Target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quillpad::tryInput({reinterpret_cast<const char*>(data), size});
  return 0;
}
