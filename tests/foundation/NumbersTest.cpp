#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "platform/foundation/NumberText.h"
#include "platform/foundation/Value.h"

namespace quillpad {
namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(Number, WritesItselfAsThePhoneDoes) {
  const std::pair<Number, const char*> cases[] = {
      {100000.0, "100000"},
      {1520.50, "1520.5"},
      {0.1 + 0.2, "0.30000000000000004"},
      {0.0001, "0.0001"},
      {0.00001, "1e-05"},
      {-0.000012345, "-1.2345e-05"},
      {1e15, "1000000000000000"},
      {9999999999999998.0, "9999999999999998"},
      {1e16, "1e+16"},
      {-1.5e300, "-1.5e+300"},
      {5e-324, "5e-324"},
      {0.0, "0"},
      {-0.0, "-0"},
      {std::nan(""), "nan"},
      {-infinite, "-inf"},
      {true, "1"},
      {false, "0"},
      {std::numeric_limits<std::int64_t>::min(), "-9223372036854775808"},
      {std::numeric_limits<std::uint64_t>::max(), "18446744073709551615"},
  };
  for (const auto& [number, text] : cases) {
    EXPECT_EQ(number.stringValue(), text);
  }
}

TEST(Number, TextOfADoubleReadsBackAsTheSameDouble) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 20000; ++i) {
    const auto value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) {
      continue;
    }
    ASSERT_EQ(doubleFromText(Number(value).stringValue()), value);
  }
}

TEST(NumberText, WritesBytesInTheLargestUnit) {
  EXPECT_EQ(bytesText(8U << 20U), "8 MiB");
  EXPECT_EQ(bytesText((1U << 20U) - 1), "1023 KiB");
  EXPECT_EQ(bytesText(1023), "1023 bytes");
}

TEST(NumberText, ReadsOnlyWhatIsANumberAsAWhole) {
  const std::pair<std::string_view, double> cases[] = {
      {"9999.99", 9999.99},
      {"+1.5", 1.5},
      {"-.5", -.5},
      {"5.", 5},
      {"1E+3", 1000},
      {"007", 7},
      {"0x1p-2", 0.25},
      {"0XA.8", 10.5},
      {"-INF", -infinite},
      {"Infinity", infinite},
      {"1e400", infinite},
      {"1e-400", 0},
  };
  for (const auto& [text, number] : cases) {
    EXPECT_EQ(doubleFromText(text), number) << text;
  }
  for (const char* text : {"", ".", " 1", "1 ", "1,5", "--1", "0b1", "1e", "0x", "١"}) {
    EXPECT_EQ(doubleFromText(text), std::nullopt) << text;
  }
  EXPECT_EQ(doubleFromText(std::string_view("1\0", 2)), std::nullopt);
  EXPECT_TRUE(std::isnan(doubleFromText("NaN").value()));
}

TEST(NumberText, ReadsTheWholeNumberThatATextBeginsWith) {
  const std::pair<std::string_view, std::int64_t> cases[] = {
      {"2024", 2024},
      {"12abc", 12},
      {" \t\n-7 ", -7},
      {"+3.9", 3},
      {"0x10", 0},
      {"", 0},
      {"--1", 0},
      {"- 1", 0},
      {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
      {"9223372036854775808", std::numeric_limits<std::int64_t>::max()},
      {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
      {"-99999999999999999999", std::numeric_limits<std::int64_t>::min()},
  };
  for (const auto& [text, number] : cases) {
    EXPECT_EQ(integerValue(text), number) << text;
  }
}

}  // namespace
}  // namespace quillpad
