// Comparing a PNG file with the picture that was found right before.
#pragma once

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillpad::drawing {

struct GoldenFolders {
  std::filesystem::path goldens;
  std::filesystem::path left;  // where a failing comparison leaves its three pictures
};

// Whether the file shows the golden `name`, but for rounding in a few pixels. A missing golden is
// recorded, and the comparison fails so that somebody looks at it. A failing one leaves
// <name>.expected.png, <name>.actual.png and <name>.difference.png beside each other.
// QUILLPAD_RECORD_GOLDENS=1 records all that differ.
::testing::AssertionResult showsGolden(
    const GoldenFolders& folders, const std::string& name, const std::vector<std::uint8_t>& actual);

}  // namespace quillpad::drawing
