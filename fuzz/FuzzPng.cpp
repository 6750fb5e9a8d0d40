// Any bytes are a picture or none, and a picture is written as a file that reads the same.
#include <cstddef>
#include <cstdint>

#include "Expect.h"
#include "platform/paint/PngReader.h"
#include "platform/paint/PngWriter.h"

using namespace quillpad;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto picture = drawing::readPng({data, size});
  if (!picture || picture->pixels.size() > 1'000'000) {
    return 0;
  }
  const auto again = drawing::readPng(drawing::writePng(*picture));
  expect(again && again->pixels == picture->pixels);
  return 0;
}
