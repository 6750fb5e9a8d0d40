// The answers of the gateway, and what is done with one that breaks its contract.
#include <csignal>
#include <gmock/gmock.h>
#include <sys/wait.h>

#include "gateway/DocumentList.h"
#include "gateway/Fetches.h"
#include "gateway/GatewayRequest.h"
#include "host/entries/Records.h"
#include "platform/foundation/Json.h"
#include "product/ProductSettings.h"

namespace quillpad {
namespace {

// The gateway packs the document into a text.
std::string answer(const std::string& document) {
  return writeJson(Dictionary{{"code", 200}, {"data", document}}, JsonLayout::compact).value();
}

class ResponsesTest : public ::testing::Test {
 protected:
  ProductSettings settings;
};

TEST_F(ResponsesTest, TurnsTheFiguresOfTheSummaryIntoTexts) {
  const Sales expected{"1520.5", "3", "0"};
  EXPECT_EQ(
      parseSales(
          answer(R"({"extra":[],"salesMonth":1520.5,"unpaidInvoices":3,"pendingEstimates":0})")),
      expected);
  EXPECT_EQ(
      parseSales(answer(
          R"({"salesMonth":-0.1,"unpaidInvoices":9007199254740993,"pendingEstimates":true})")),
      (Sales{"-0.1", "9007199254740993", "1"}));
}

TEST_F(ResponsesTest, EndsTheProcessForABrokenSummary) {
  const std::pair<std::string, const char*> cases[] = {
      {"<html>", "SalesData line 58: the gateway's answer is not JSON"},
      {"[]", "SalesData line [0-9]+: the gateway's answer is of another kind"},
      {"{}", "SalesData line [0-9]+: data is absent"},
      {R"({"data":{"salesMonth":1}})", "SalesData line [0-9]+: data is of another kind"},
      {answer("not JSON"), "SalesData line [0-9]+: salesMonth is absent"},
      {answer("[]"), "SalesData line [0-9]+: the document inside .* is of another kind"},
      {answer(R"({"salesMonth":1,"unpaidInvoices":"3","pendingEstimates":0})"),
       "SalesData line [0-9]+: unpaidInvoices is of another kind"},
      {answer(R"({"salesMonth":1,"unpaidInvoices":3,"pendingEstimates":null})"),
       "SalesData line [0-9]+: pendingEstimates is of another kind"},
      {answer(R"({"salesMonth":1,"unpaidInvoices":3})"),
       "SalesData line [0-9]+: pendingEstimates is absent"}};
  for (const auto& [text, words] : cases) {
    EXPECT_DEATH(parseSales(text), words) << text;
  }
}

ListSource here(std::source_location where = std::source_location::current()) {
  return {"UnpaidData line 82", where};
}

TEST_F(ResponsesTest, PassesTheRowsOnUnchanged) {
  EXPECT_EQ(parseRecords(answer(R"({"records":[]})"), here()), Array{});
  EXPECT_EQ(
      parseRecords(answer(R"({"total":1,"records":[{"no":"7","x":[1.5,null]},"odd",4]})"), here()),
      (Array{Dictionary{{"no", "7"}, {"x", Array{1.5, Value()}}}, "odd", 4}));
}

TEST_F(ResponsesTest, EndsTheProcessForABrokenList) {
  const std::pair<std::string, const char*> cases[] = {
      {"12", "UnpaidData line 82: the gateway's answer is not a JSON object or array"},
      {"[]", "ResponsesTest line [0-9]+: the gateway's answer is of another kind"},
      {"{}", "ResponsesTest line [0-9]+: data is absent"},
      {R"({"data":[]})", "ResponsesTest line [0-9]+: data is of another kind"},
      {answer("{"), "ResponsesTest line [0-9]+: records is absent"},
      {answer("7"), "ResponsesTest line [0-9]+: the document inside .* is of another kind"},
      {answer(R"({"records":{}})"), "ResponsesTest line [0-9]+: records is of another kind"}};
  for (const auto& [text, words] : cases) {
    EXPECT_DEATH(parseRecords(text, here()), words) << text;
  }
}

TEST_F(ResponsesTest, NeverTellsWhatTheAnswerHeld) {
  EXPECT_EXIT(
      parseSales(R"({"data":"secret-4711)"),
      [](int status) { return WIFSIGNALED(status); },
      ::testing::Not(::testing::HasSubstr("4711")));
}

TEST_F(ResponsesTest, RecordsComeBackFromTheHomeScreenAsTheyWere) {
  const Sales sales{"1", "two", ""};
  EXPECT_EQ(Sales::fromValue(sales.toValue()), sales);
  const Unpaid unpaid{{Dictionary{{"total", 1.5}}, 7}};
  EXPECT_EQ(Unpaid::fromValue(unpaid.toValue()), unpaid);
  const Pending pending{};
  EXPECT_EQ(Pending::fromValue(pending.toValue()), pending);
  EXPECT_DEATH(Sales::fromValue(5), "Records line [0-9]+: the record is of another kind");
  EXPECT_DEATH(
      Sales::fromValue(Dictionary{{"salesMonth", "1"}, {"unpaidInvoices", 1}}),
      "Records line [0-9]+: unpaidInvoices is of another kind");
  EXPECT_DEATH(Unpaid::fromValue(Dictionary{}), "Records line [0-9]+: records is absent");
  EXPECT_DEATH(
      Pending::fromValue(Dictionary{{"records", 1}}), "Records line [0-9]+: records is of another");
}

}  // namespace
}  // namespace quillpad
