#include <functional>
#include <gmock/gmock.h>
#include <set>

#include "demo/Gateway.h"
#include "platform/foundation/Fatal.h"
#include "platform/foundation/Json.h"

namespace quillpad::demo {
namespace {
using testing::ElementsAre;
using testing::HasSubstr;

constexpr Day today{.year = 2026, .month = 3, .day = 7};
constexpr const char* token = "0123456789abcdef";

Value parsed(const std::string& text) {
  const auto value = readJson(text, JsonFragments::allowed);
  EXPECT_TRUE(value) << text;
  return value.value_or(Value());
}

Dictionary listBody() {
  return {
      {"businessId", "demo"},
      {"currentPage", "1"},
      {"endTime", "2027-01-01 00:00:00"},
      {"isFullPaid", "Unpaid"},
      {"isValid", "1"},
      {"pageSize", "3"},
      {"searchType", "2"},
      {"sort", "no"},
      {"sortType", "desc"},
      {"startTime", "2026-01-01 00:00:00"},
      {"type", "1"}};
}

Dictionary without(Dictionary dictionary, const std::string& key) {
  dictionary.remove(key);
  return dictionary;
}

Dictionary summaryBody(const std::string& currentTime) {
  return {{"businessId", "demo"}, {"currentTime", currentTime}};
}

Request post(const std::string& path, const Dictionary& body) {
  return {
      .method = "POST",
      .path = path,
      .contentType = "application/json",
      .authorization = token,
      .body = writeJson(body, JsonLayout::pretty).value()};
}

Request postList(const Dictionary& body) { return post("/invoice/invoice/listFast", body); }
Request postSummary(const std::string& currentTime) {
  return post("/invoice/invoice/getDataMap", summaryBody(currentTime));
}

class DemoGatewayTest : public testing::Test {
 protected:
  Dictionary innerOf(const Request& request) {
    const Answer answer = gateway_.answer(request);
    EXPECT_EQ(answer.status, 200) << answer.body;
    const Value outer = parsed(answer.body);
    const Value inner =
        parsed(forcedMember<std::string>(forcedAs<Dictionary>(outer, "answer"), "data"));
    return forcedAs<Dictionary>(inner, "document");
  }

  std::vector<std::string> numbersOf(const Request& request) {
    const Dictionary inner = innerOf(request);
    std::vector<std::string> numbers;
    for (const Value& row : forcedMember<Array>(inner, "records")) {
      numbers.push_back(forcedMember<std::string>(*row.as<Dictionary>(), "no"));
    }
    return numbers;
  }

  // The numbers of all documents for which the condition holds, the highest first.
  std::vector<std::string> numbersWhere(const std::function<bool(const Document&)>& condition) {
    std::set<int, std::greater<>> numbers;
    for (const Document& document : documentsOn(today)) {
      if (condition(document)) {
        EXPECT_TRUE(numbers.insert(document.no).second) << document.no << " stands twice";
      }
    }
    std::vector<std::string> texts;
    texts.reserve(numbers.size());
    for (const int number : numbers) {
      texts.push_back(std::to_string(number));
    }
    return texts;
  }

  Gateway gateway_{token, "of the switchboard", [] { return today; }};
};

TEST_F(DemoGatewayTest, EveryFieldOfAListRequestCounts) {
  const auto isInvoice = [](const Document& document, const std::string& year, bool valid) {
    return document.type == DocumentType::invoice && document.valid == valid &&
           document.createTime.starts_with(year);
  };
  using Condition = std::function<bool(const Document&)>;
  const std::tuple<std::vector<Dictionary::Member>, const char*, Condition> cases[] = {
      {{}, "", [&](auto& d) { return isInvoice(d, "2026", true) && !d.paid; }},
      {{}, "isFullPaid", [&](auto& d) { return isInvoice(d, "2026", true); }},
      {{{"isFullPaid", "Paid"}}, "", [&](auto& d) { return isInvoice(d, "2026", true) && d.paid; }},
      {{{"isValid", "0"}}, "isFullPaid", [&](auto& d) { return isInvoice(d, "2026", false); }},
      {{{"startTime", "2025-01-01 00:00:00"}, {"endTime", "2026-01-01 00:00:00"}},
       "",
       [&](auto& d) { return isInvoice(d, "2025", true) && !d.paid; }},
      {{{"searchType", "1"}},
       "isFullPaid",
       [&](auto& d) {
         return d.type == DocumentType::invoice && d.valid && d.dueDate.starts_with("2026");
       }},
      {{{"type", "2"}, {"estimateStatus", "0"}},
       "isFullPaid",
       [&](auto& d) {
         return d.type == DocumentType::estimate && d.valid && d.createTime.starts_with("2026") &&
                d.estimateStatus == EstimateStatus::pending;
       }},
  };
  for (const auto& [changes, removed, expected] : cases) {
    Dictionary body = without(listBody(), removed);
    body.set("pageSize", "1000");
    for (const auto& [key, value] : changes) {
      body.set(key, value);
    }
    const std::vector<std::string> numbers = numbersWhere(expected);
    EXPECT_GE(numbers.size(), 1U);
    EXPECT_EQ(numbersOf(postList(body)), numbers) << postList(body).body;
  }
}

TEST_F(DemoGatewayTest, ListsAreSortedAndCutIntoPages) {
  Dictionary body = listBody();
  const std::vector<std::string> newest = numbersOf(postList(body));
  ASSERT_EQ(newest.size(), 3U);
  body.set("currentPage", "2");
  const std::vector<std::string> next = numbersOf(postList(body));
  ASSERT_GE(next.size(), 1U);
  EXPECT_GT(newest.back(), next.front());
  body.set("currentPage", "1000000");
  EXPECT_THAT(numbersOf(postList(body)), ElementsAre());
  body.set("currentPage", "1");
  body.set("sortType", "asc");
  EXPECT_LT(numbersOf(postList(body)).front(), newest.back());

  for (const char* key : {"createTime", "dueDate", "clientName", "total"}) {
    body.set("sort", key);
    body.set("pageSize", "1000");
    const Dictionary inner = innerOf(postList(body));
    const Value* previous = nullptr;
    for (const Value& row : forcedMember<Array>(inner, "records")) {
      const Value* value = row.as<Dictionary>()->find(key);
      if (previous != nullptr && value->as<Number>() != nullptr) {
        EXPECT_LE(previous->as<Number>()->doubleValue(), value->as<Number>()->doubleValue());
      } else if (previous != nullptr) {
        EXPECT_LE(*previous->as<std::string>(), *value->as<std::string>());
      }
      previous = value;
    }
  }
}

TEST_F(DemoGatewayTest, SummaryIsThatOfTheDocuments) {
  for (const std::string month : {"2026-03", "2025-11"}) {
    std::int64_t cents = 0;
    int unpaid = 0;
    int pending = 0;
    for (const Document& document : documentsOn(today)) {
      const bool counts = document.valid && document.createTime.starts_with(month.substr(0, 4));
      const bool isInvoice = document.type == DocumentType::invoice;
      const bool isOfMonth = document.createTime.starts_with(month);
      cents += counts && isInvoice && isOfMonth ? document.cents : 0;
      unpaid += counts && isInvoice && !document.paid ? 1 : 0;
      const bool isPending = document.estimateStatus == EstimateStatus::pending;
      pending += counts && !isInvoice && isPending ? 1 : 0;
    }
    const Dictionary inner = innerOf(postSummary(month + "-07 10:00:00"));
    const auto figure = [&](const char* key) {
      return inner.find(key)->as<Number>()->doubleValue();
    };
    EXPECT_EQ(figure("salesMonth"), static_cast<double>(cents) / 100);
    EXPECT_EQ(figure("unpaidInvoices"), unpaid);
    EXPECT_EQ(figure("pendingEstimates"), pending);
    EXPECT_GT(std::min(unpaid, pending), 0);
  }
}

TEST(Documents, ThereIsSomethingToShowOnEveryDay) {
  for (const Day day : {Day{2026, 1, 1}, Day{2028, 2, 29}, Day{2026, 12, 31}}) {
    const std::vector<Document> documents = documentsOn(day);
    Query query;
    query.startTime = std::to_string(day.year) + "-01-01 00:00:00";
    query.endTime = std::to_string(day.year + 1) + "-01-01 00:00:00";
    query.paid = false;
    EXPECT_GE(list(documents, query).total, 3U);
    query.type = DocumentType::estimate;
    query.paid.reset();
    query.estimateStatus = EstimateStatus::pending;
    EXPECT_GE(list(documents, query).total, 3U);
    std::set<std::string> names;
    for (const Document& document : documents) {
      names.insert(document.clientName);
      EXPECT_GE(document.createTime.substr(0, 4), std::to_string(day.year - 1));
    }
    EXPECT_GE(names.size(), 10U);
  }
}

TEST_F(DemoGatewayTest, WrongRequestsAreRefused) {
  const Request good = postList(listBody());
  const auto changed = [&](auto change) {
    Request request = good;
    change(request);
    return request;
  };
  const auto withField = [](const char* key, const Value& value) {
    Dictionary body = listBody();
    body.set(key, value);
    return postList(body);
  };
  const std::tuple<Request, int, const char*> cases[] = {
      {changed([](Request& r) { r.authorization = ""; }), 401, "token"},
      {changed([](Request& r) { r.authorization = "Bearer 0123456789abcdef"; }), 401, "token"},
      {changed([](Request& r) { r.authorization += "0"; }), 401, "token"},
      {changed([](Request& r) { r.authorization.pop_back(); }), 401, "token"},
      {changed([](Request& r) { r.method = "GET"; }), 405, "POST"},
      {changed([](Request& r) { r.path += "/"; }), 404, "path"},
      {changed([](Request& r) { r.contentType = "text/plain"; }), 415, "application/json"},
      {changed([](Request& r) { r.body.pop_back(); }), 400, "JSON"},
      {changed([](Request& r) { r.body = "[]"; }), 400, "JSON"},
      {changed([](Request& r) { r.body = std::string(60000, '['); }), 400, "JSON"},
      {postList(without(listBody(), "businessId")), 400, "'businessId' is missing"},
      {postList(without(listBody(), "type")), 400, "'type' is missing"},
      {withField("businessId", "other"), 403, "business"},
      {withField("pageSize", 3), 400, "'pageSize' must be a text"},
      {withField("pageSize", "0"), 400, "'pageSize'"},
      {withField("currentPage", "1x"), 400, "'currentPage'"},
      {withField("startTime", "2026-01-01"), 400, "'startTime'"},
      {withField("startTime", "٢٠٢٦-٠١-٠١ ٠٠:٠٠:٠٠"), 400, "'startTime'"},
      {withField("endTime", "2027-1-1 00:00:00"), 400, "'endTime'"},
      {withField("isFullPaid", "unpaid"), 400, "Unpaid, Paid"},
      {withField("type", "2"), 400, "'isFullPaid' is unknown here"},
      {withField("estimateStatus", "0"), 400, "'estimateStatus' is unknown here"},
      {withField("sort", "number"), 400, "'sort'"},
      {postSummary("yesterday"), 400, "'currentTime'"},
  };
  for (const auto& [request, status, message] : cases) {
    const Answer answer = gateway_.answer(request);
    EXPECT_EQ(answer.status, status) << answer.body;
    EXPECT_THAT(answer.body, HasSubstr(message));
    EXPECT_EQ(parsed(answer.body).as<Dictionary>()->find("data"), nullptr);
    EXPECT_THAT(answer.body, testing::Not(HasSubstr(token)));
  }
}

TEST_F(DemoGatewayTest, AnswersAreDamagedToOrder) {
  const std::string month = "2026-03-07 10:00:00";
  const std::tuple<const char*, Request, const char*, const char*> cases[] = {
      {"shape=no-data", postSummary(month), "success", "data"},
      {"shape=data-object", postSummary(month), R"("data":{"salesMonth":)", "\\"},
      {"shape=inner-not-json", postSummary(month), R"("data":"{)", "salesMonth"},
      {"shape=inner-array", postSummary(month), R"("data":"[]")", "salesMonth"},
      {"shape=missing-key", postSummary(month), "salesMonth", "unpaidInvoices"},
      {"shape=missing-key", postList(listBody()), "pages", "records"},
      {"shape=figure-text", postSummary(month), R"(\"pendingEstimates\":\")", "null"},
      {"shape=figure-text", postList(listBody()), R"(\"total\":\")", "null"},
      {"shape=records-object", postList(listBody()), R"(\"records\":{})", "clientName"},
      {"shape=records-object", postSummary(month), "salesMonth", "records"},
      {"not-json", postSummary(month), "<h1>", "data"},
  };
  for (const auto& [fault, request, holds, lacks] : cases) {
    gateway_.setFault(Fault::parse(fault).value());
    const Answer answer = gateway_.answer(request);
    EXPECT_EQ(answer.status, 200);
    EXPECT_THAT(answer.body, HasSubstr(holds)) << fault;
    EXPECT_THAT(answer.body, testing::Not(HasSubstr(lacks))) << fault;
  }
}

TEST_F(DemoGatewayTest, FaultsAreLimitedToAPathAndACount) {
  gateway_.setFault(Fault::parse("status=503,delay=40,path=listFast,count=2").value());
  const Request list = postList(listBody());
  EXPECT_EQ(gateway_.answer(postSummary("2026-03-07 10:00:00")).status, 200);
  EXPECT_EQ(gateway_.answer(list).status, 503);
  EXPECT_EQ(gateway_.answer(list).delay, std::chrono::milliseconds(40));
  EXPECT_EQ(gateway_.answer(list).status, 200);
}

TEST(Faults, WrongItemsAreRefused) {
  for (const char* items : {"", "slow", "drop,", "shape=round", "count=0", "path=/etc"}) {
    EXPECT_FALSE(Fault::parse(items)) << items;
  }
  for (const char* items : {"delay", "delay=-1", "delay=1s", "status=99", "status=600"}) {
    EXPECT_FALSE(Fault::parse(items)) << items;
  }
}

}  // namespace
}  // namespace quillpad::demo
