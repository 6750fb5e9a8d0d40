// Comparing texts and pictures with those that were found right before.
//
// The right ones are files in tests/paint/goldens. A missing one is recorded, and the test fails so
// that somebody looks at it. What differs is left in the build folder, a picture as
// <name>.expected.png, <name>.actual.png and <name>.difference.png beside each other.
// QUILLPAD_RECORD_GOLDENS=1 records all that differ.
#pragma once

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillpad::drawing {

struct GoldenFolders {
  std::filesystem::path goldens = GOLDENS_FOLDER;
  std::filesystem::path left = ACTUAL_FOLDER;
};

// Whether the text equals the golden `name`; used as EXPECT_TRUE(matchesGolden(...)). A failure
// tells the lines that differ.
::testing::AssertionResult matchesGolden(const std::string& name, const std::string& actual);

// Whether the PNG file shows the golden `name`, but for rounding in a few pixels.
::testing::AssertionResult showsGolden(
    const std::string& name,
    const std::vector<std::uint8_t>& actual,
    const GoldenFolders& folders = {});

}  // namespace quillpad::drawing
