#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "fixtures/ScopedVariable.h"
#include "platform/foundation/Locale.h"
#include "platform/locale/NumberFormatter.h"

namespace quillpad {
namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

std::string amount(double number, std::string pattern = "#,###.##;") {
  NumberFormatter formatter;
  formatter.setPositiveFormat(std::move(pattern));
  return formatter.string(number).value_or("(nothing)");
}

TEST(NumberFormatter, GroupsWithCommasAndRoundsHalfEvenOnTheShortestText) {
  const std::pair<double, const char*> cases[] = {
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
  for (const char* locale : {"C", "POSIX", "en_US.UTF-8", "nonsense/../x"}) {
    const fixtures::ScopedVariable all("LC_ALL", locale);
    for (const auto& [number, text] : cases) {
      EXPECT_EQ(amount(number), text) << number << locale;
    }
  }
  EXPECT_NE(amount(std::nan("")), "");
  EXPECT_NE(amount(-infinite), amount(infinite));
}

TEST(NumberFormatter, TakesDigitsAndSeparatorsOfTheLocaleAndOneMinusSign) {
  const std::pair<const char*, const char*> cases[] = {
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

TEST(NumberFormatter, FollowsTheLocaleOfNumbersAndThatOfAScope) {
  const fixtures::ScopedVariable all("LC_ALL", std::nullopt);
  const fixtures::ScopedVariable messages("LC_MESSAGES", "ar_EG");
  const fixtures::ScopedVariable numbers("LC_NUMERIC", "de_DE");
  EXPECT_EQ(amount(1234.5), "1.234,5");
  const ScopedLocale scope("hi_IN");
  EXPECT_EQ(amount(1234.5), "1,234.5");
}

TEST(NumberFormatter, KeepsAnIntegerDigitThatThePatternNamesAndRefusesABadPattern) {
  const fixtures::ScopedVariable locale("LC_ALL", "C");
  EXPECT_EQ(amount(0.5, "0.##"), "0.5");
  EXPECT_EQ(amount(0.5, "#.00"), ".50");
  EXPECT_EQ(amount(0.5, "#,###.##;;"), "(nothing)");
}

}  // namespace
}  // namespace quillpad
