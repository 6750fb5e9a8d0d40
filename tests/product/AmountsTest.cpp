#include <gtest/gtest.h>

#include "platform/foundation/Locale.h"
#include "product/ProductSettings.h"
#include "support/Amounts.h"
#include "views/SmallViews.h"

namespace quillpad {
namespace {

class AmountsTest : public ::testing::Test {
 protected:
  ProductSettings settings;
};

TEST_F(AmountsTest, TakesTheSymbolFromBeforeTheFirstDash) {
  const std::pair<const char*, const char*> cases[] = {
      {"€ - EUR", "€"}, {"USD", "USD"}, {" - ", ""}, {"A B-C", "AB"}, {"", ""}, {"\tkr -", "\tkr"}};
  for (const auto& [currency, symbol] : cases) {
    settings.setCurrency(currency);
    EXPECT_EQ(currencySymbol(), symbol) << currency;
  }
}

TEST_F(AmountsTest, UsesTheDollarWhereNoCurrencyIsSet) {
  EXPECT_EQ(currencySymbol(), "$");
  settings.set("currentBusiness", "€ - EUR");
  EXPECT_EQ(currencySymbol(), "$");
  settings.set("currentBusiness", Dictionary{{"name", "Quill & Co"}});
  EXPECT_EQ(currencySymbol(), "$");
}

TEST_F(AmountsTest, WritesTotalsBehindTheSymbol) {
  const std::pair<Value, const char*> cases[] = {
      {1234.5, "$1,234.5"},
      {0.5, "$.5"},
      {0, "$0"},
      {-1234.5, "$-1,234.5"},
      {true, "$1"},
      {"12.5", "$0"},
      {Value(), "$0"}};
  for (const auto& [total, text] : cases) {
    EXPECT_EQ(formattedTotal({{"total", total}}), text);
  }
  EXPECT_EQ(formattedTotal({}), "$0");
}

TEST_F(AmountsTest, FollowsTheLocaleButForTheSymbolsPlaceAndTheCap) {
  const fixtures::ScopedVariable german("LC_ALL", "de_DE.UTF-8");
  settings.setCurrency("€ - EUR");
  EXPECT_EQ(formattedTotal({{"total", 1234567.5}}), "€1.234.567,5");
  EXPECT_EQ(salesAmountText("1234.5"), "€1.234,5");
  EXPECT_EQ(salesAmountText("12000"), ">€9,999.99");
}

TEST_F(AmountsTest, ReadsTheCurrencyAfreshEachTime) {
  settings.setCurrency("");
  EXPECT_EQ(formattedTotal({{"total", 5}}), "5");
  settings.setCurrency("£ - GBP");
  EXPECT_EQ(formattedTotal({{"total", 5}}), "£5");
  const ScopedLocale rendering("de", "€ - EUR");
  EXPECT_EQ(formattedTotal({{"total", 5.5}}), "€5,5");
}

TEST_F(AmountsTest, CapsTheSalesFigure) {
  const std::pair<const char*, const char*> cases[] = {
      {"0", "$0"},
      {"9999.989999", "$9,999.99"},
      {"9999.99", ">$9,999.99"},
      {"inf", ">$9,999.99"},
      {"nan", ">$9,999.99"},
      {"-12000", "$-12,000"}};
  for (const auto& [salesMonth, text] : cases) {
    EXPECT_EQ(salesAmountText(salesMonth), text) << salesMonth;
  }
}

TEST_F(AmountsTest, EndsTheProcessForASalesFigureThatIsNotANumber) {
  for (const char* salesMonth : {"", "abc", "1,234", "12 "}) {
    EXPECT_DEATH(salesAmountText(salesMonth), "SmallViews line [0-9]+: .*\"salesMonth\"");
  }
  settings.setCurrency(5);
  EXPECT_DEATH(salesAmountText("abc"), "Amounts line [0-9]+: .*\"currency\"");
}

}  // namespace
}  // namespace quillpad
