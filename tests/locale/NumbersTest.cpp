#include <bit>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "fixtures/ScopedVariable.h"
#include "platform/foundation/NumberText.h"
#include "platform/foundation/Value.h"
#include "platform/locale/NumberFormatter.h"

namespace quillpad {
namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(Number, WritesItselfAsThePhoneDoes) {
  const struct {
    Number number;
    const char* text;
  } cases[] = {
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

TEST(NumberText, ReadsOnlyWhatIsANumberAsAWhole) {
  const struct {
    std::string_view text;
    std::optional<double> number;
  } cases[] = {
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
      {"", std::nullopt},
      {".", std::nullopt},
      {" 1", std::nullopt},
      {"1 ", std::nullopt},
      {"\n1", std::nullopt},
      {"1,5", std::nullopt},
      {"1_000", std::nullopt},
      {"$1", std::nullopt},
      {"--1", std::nullopt},
      {"0b1", std::nullopt},
      {"1e", std::nullopt},
      {"0x", std::nullopt},
      {"١", std::nullopt},
      {std::string_view("1\0", 2), std::nullopt},
      {std::string_view("\0", 1), std::nullopt},
  };
  for (const auto& [text, number] : cases) {
    EXPECT_EQ(doubleFromText(text), number) << text;
  }
  EXPECT_TRUE(std::isnan(doubleFromText("NaN").value()));
}

TEST(NumberText, ReadsTheWholeNumberThatATextBeginsWith) {
  const struct {
    std::string_view text;
    std::int64_t number;
  } cases[] = {
      {"2024", 2024},
      {"12abc", 12},
      {" \t\n-7 ", -7},
      {"+3.9", 3},
      {"0x10", 0},
      {"abc", 0},
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

std::string amount(double number, std::string pattern = "#,###.##;") {
  NumberFormatter formatter;
  formatter.setPositiveFormat(std::move(pattern));
  return formatter.string(number).value_or("(nothing)");
}

class AmountsWithoutALocale : public testing::TestWithParam<const char*> {};

TEST_P(AmountsWithoutALocale, AreGroupedWithCommasAndRoundedHalfEvenOnTheirShortestText) {
  const fixtures::ScopedVariable locale("LC_ALL", GetParam());
  const struct {
    double number;
    const char* text;
  } cases[] = {
      {1234.5, "1,234.5"},
      {1234.567, "1,234.57"},
      {1000, "1,000"},
      {1234567.891, "1,234,567.89"},
      {0.5, ".5"},
      {-0.5, "-.5"},
      {0, "0"},
      {0.004, "0"},
      {-0.001, "-0"},
      {12.001, "12"},
      {-1234.5, "-1,234.5"},
      {999.995, "1,000"},
      {2.675, "2.68"},
      {1.005, "1"},
      {0.125, ".12"},
      {0.375, ".38"},
      {1e16, "10,000,000,000,000,000"},
      {123456789012345678.0, "123,456,789,012,345,680"},
  };
  for (const auto& [number, text] : cases) {
    EXPECT_EQ(amount(number), text) << number;
  }
  EXPECT_NE(amount(std::nan("")), "");
  EXPECT_NE(amount(-infinite), amount(infinite));
}

INSTANTIATE_TEST_SUITE_P(
    Locales, AmountsWithoutALocale, testing::Values("C", "POSIX", "en_US.UTF-8", "nonsense/../x"));

TEST(NumberFormatter, TakesDigitsAndSeparatorsOfTheLocaleAndOneMinusSign) {
  const struct {
    const char* locale;
    const char* text;
  } cases[] = {
      {"de_DE.UTF-8", "-1.234,5"},
      {"fr_FR", "-1\u202F234,5"},
      {"sv_SE", "-1\u00A0234,5"},
      {"he_IL", "-1,234.5"},
      {"ar_EG", "-١٬٢٣٤٫٥"},
      {"fa_IR", "-۱٬۲۳۴٫۵"},
      {"hi_IN", "-1,234.5"},
  };
  for (const auto& [locale, text] : cases) {
    const fixtures::ScopedVariable all("LC_ALL", locale);
    EXPECT_EQ(amount(-1234.5), text) << locale;
  }
}

TEST(NumberFormatter, KeepsAnIntegerDigitThatThePatternNamesAndRefusesABadPattern) {
  const fixtures::ScopedVariable locale("LC_ALL", "C");
  EXPECT_EQ(amount(0.5, "0.##"), "0.5");
  EXPECT_EQ(amount(0.5, "#.00"), ".50");
  EXPECT_EQ(amount(0.5, "#,###.##;;"), "(nothing)");
}

}  // namespace
}  // namespace quillpad
