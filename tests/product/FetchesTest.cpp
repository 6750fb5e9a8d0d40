// The three fetches, over real HTTPS.
#include <future>
#include <gmock/gmock.h>
#include <memory>

#include "gateway/Fetches.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Iso8601.h"
#include "product/GatewayOfTest.h"
#include "product/ProductSettings.h"

namespace quillpad {
namespace {
using ::testing::ElementsAre;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

// Starts the fetch and waits for its end: what the callback got, or nothing where it was destroyed
// uncalled.
template <class T>
std::optional<FetchResult<T>> outcome(void (*fetch)(FetchCallback<T>)) {
  std::optional<FetchResult<T>> outcome;
  std::promise<void> end;
  const auto tell = [](std::promise<void>* destroyed) { destroyed->set_value(); };
  fetch([&, callback = std::shared_ptr<std::promise<void>>(&end, tell)](FetchResult<T> result) {
    EXPECT_FALSE(outcome) << "called twice";
    outcome.emplace(std::move(result));
  });
  end.get_future().wait();
  return outcome;
}

// The request as it came, without the fields that the transport adds by itself. The length is the
// transport's, too: like the phone's it writes what it sends.
std::string raw(const fixtures::HttpsServer::Request& request) {
  std::string text = request.method + " " + request.path + "\n";
  for (const auto& [name, value] : request.headers) {
    if (name != "Host" && name != "User-Agent" && name != "Accept" && name != "Accept-Encoding" &&
        name != "Accept-Language") {
      text.append(name).append(": ").append(value).append("\n");
    }
  }
  return text + "\n" + request.body;
}

class FetchesTest : public ::testing::Test {
 protected:
  FetchesTest() { settings.signIn("business-1", "abc"); }

  std::vector<std::string> sentRequests() {
    std::vector<std::string> texts;
    for (const auto& request : gateway.server().requests()) {
      texts.push_back(raw(request));
    }
    return texts;
  }

  ProductSettings settings;
  GatewayOfTest gateway;
  HeldClock clock{dateFromIso8601("2025-03-07T09:05:03.000Z").value()};
};

constexpr const char* summaryRequest =
    "POST /invoice/invoice/getDataMap\n"
    "content-length: 74\n"
    "Content-type: application/json\n"
    "Authorization: abc\n"
    "\n"
    "{\n"
    "  \"businessId\" : \"business-1\",\n"
    "  \"currentTime\" : \"2025-03-07 09:05:03\"\n"
    "}";

// The two list requests differ in their length, a filter and the type.
std::string listRequest(
    const std::string& length, const std::string& filter, const std::string& type) {
  return "POST /invoice/invoice/listFast\n"
         "content-length: " +
         length +
         "\n"
         "Content-type: application/json\n"
         "Authorization: abc\n"
         "\n"
         "{\n"
         "  \"businessId\" : \"business-1\",\n"
         "  \"currentPage\" : \"1\",\n"
         "  \"endTime\" : \"2026-01-01 00:00:00\",\n" +
         filter +
         "  \"isValid\" : \"1\",\n"
         "  \"pageSize\" : \"3\",\n"
         "  \"searchType\" : \"2\",\n"
         "  \"sort\" : \"no\",\n"
         "  \"sortType\" : \"desc\",\n"
         "  \"startTime\" : \"2025-01-01 00:00:00\",\n"
         "  \"type\" : \"" +
         type + "\"\n}";
}

TEST_F(FetchesTest, AskForTheSummaryAndForTheDocumentsOfTheYear) {
  gateway.answerWithDocument(R"({"salesMonth":1520.5,"unpaidInvoices":3,"pendingEstimates":0})");
  const auto sales = outcome(getSalesData);
  ASSERT_TRUE(sales && *sales);
  EXPECT_EQ(**sales, (Sales{"1520.5", "3", "0"}));
  gateway.answerWithDocument(R"({"records":[{"no":"9","total":5}]})");
  for (const auto fetch : {getUnpaidData, getPendingData}) {
    const auto rows = outcome(fetch);
    ASSERT_TRUE(rows && *rows);
    EXPECT_EQ(**rows, (Array{Dictionary{{"no", "9"}, {"total", 5}}}));
  }
  EXPECT_THAT(
      sentRequests(),
      ElementsAre(
          summaryRequest,
          listRequest("276", "  \"isFullPaid\" : \"Unpaid\",\n", "1"),
          listRequest("275", "  \"estimateStatus\" : \"0\",\n", "2")));
}

// The gateway reads Gregorian years and ASCII digits.
TEST_F(FetchesTest, AskForTheSameDatesInEveryLocale) {
  gateway.answerWithDocument(
      R"({"records":[],"salesMonth":0,"unpaidInvoices":0,"pendingEstimates":0})");
  std::size_t sent = 0;
  for (const char* locale :
       {"ar_EG.UTF-8", "fa_IR", "th_TH", "mr_IN", "ar_SA@calendar=islamic", "ja_JP"}) {
    const fixtures::ScopedVariable all("LC_ALL", locale);
    outcome(getSalesData);
    outcome(getUnpaidData);
    const auto requests = sentRequests();
    ASSERT_EQ(requests.size(), sent + 2);
    EXPECT_EQ(requests[sent], summaryRequest) << locale;
    EXPECT_EQ(requests[sent + 1], listRequest("276", "  \"isFullPaid\" : \"Unpaid\",\n", "1"))
        << locale;
    sent += 2;
  }
}

TEST_F(FetchesTest, TakesAnAnswerOfAnyStatus) {
  for (const int status : {200, 401, 404, 500}) {
    gateway.answerWith(status, R"({"data":"{\"records\":[1]}"})");
    const auto rows = outcome(getUnpaidData);
    ASSERT_TRUE(rows && *rows) << status;
    EXPECT_EQ(**rows, Array{1});
  }
}

TEST_F(FetchesTest, ReportsATransportErrorOnce) {
  gateway.fail();
  const auto sales = outcome(getSalesData);
  ASSERT_TRUE(sales);
  ASSERT_FALSE(*sales);
  EXPECT_LT(sales->error().code, 0);
  const auto rows = outcome(getPendingData);
  ASSERT_TRUE(rows);
  EXPECT_FALSE(*rows);
}

TEST_F(FetchesTest, RefusesWithoutABusinessOrAToken) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"", "abc", "没有获取到businessID\n"},
      {"", "", "没有获取到businessID\n"},
      {"business-1", "", "没有token\n"}};
  for (const auto& [businessId, token, line] : cases) {
    settings.signIn(businessId, token);
    CaptureStdout();
    EXPECT_FALSE(outcome(getSalesData));
    EXPECT_EQ(GetCapturedStdout(), line);
    CaptureStdout();
    EXPECT_FALSE(outcome(getUnpaidData));
    EXPECT_FALSE(outcome(getPendingData));
    EXPECT_EQ(GetCapturedStdout(), std::string(line) + line);
  }
  EXPECT_TRUE(gateway.server().requests().empty());
}

TEST_F(FetchesTest, EndsTheProcessWithoutSettings) {
  settings.set("businessId", 12);
  EXPECT_DEATH(outcome(getSalesData), "GatewayRequest line [0-9]+: .*\"businessId\".* is absent");
  settings.signIn("", "abc");
  settings.set("token", Dictionary{});
  CaptureStdout();
  EXPECT_FALSE(outcome(getSalesData)) << "the business is checked first";
  GetCapturedStdout();
  settings.set("businessId", "business-1");
  EXPECT_DEATH(outcome(getUnpaidData), "GatewayRequest line [0-9]+: .*\"token\".* is absent");
}

}  // namespace
}  // namespace quillpad
