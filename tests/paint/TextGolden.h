// Comparing a text with the one that was found right before.
//
// The right ones are files in tests/paint/goldens. A missing one is recorded, and the test fails
// so that somebody looks at it. A differing text is left in the build folder, and the first lines
// that differ are told. QUILLPAD_RECORD_GOLDENS=1 records all that are compared.
#pragma once

#include <gtest/gtest.h>
#include <string>

namespace quillpad::drawing {

// Whether the text equals the golden `name`; used as EXPECT_TRUE(matchesGolden(...)).
::testing::AssertionResult matchesGolden(const std::string& name, const std::string& actual);

}  // namespace quillpad::drawing
