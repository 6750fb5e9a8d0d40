// Any bytes are a picture or none, and a picture is written as a file that reads the same.

#include "Target.h"
#include "platform/paint/PngReader.h"
#include "platform/paint/PngWriter.h"

using namespace quillpad;

void quillpad::tryInput(std::string_view input) {
  const auto picture =
      drawing::readPng({reinterpret_cast<const std::uint8_t*>(input.data()), input.size()});
  if (!picture || picture->pixels.size() > 1'000'000) {
    return;
  }
  const auto again = drawing::readPng(drawing::writePng(*picture));
  expect(again && again->pixels == picture->pixels);
}
