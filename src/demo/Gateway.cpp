#include "demo/Gateway.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <expected>
#include <gnutls/gnutls.h>
#include <optional>
#include <utility>

#include "platform/foundation/Json.h"

namespace quillpad::demo {
namespace {

constexpr std::string_view summaryPath = "/invoice/invoice/getDataMap";
constexpr std::string_view listPath = "/invoice/invoice/listFast";
constexpr std::string_view documentsPath = "/demo/documents";

std::string jsonText(const Value& value) {
  return writeJson(value, JsonLayout::compact).value_or("null");
}

double amount(std::int64_t cents) { return static_cast<double>(cents) / 100; }

// "2026-03-07 09:05:03"
bool isMoment(std::string_view text) {
  return std::ranges::equal(text, std::string_view("dddd-dd-dd dd:dd:dd"), [](char c, char form) {
    return form == 'd' ? '0' <= c && c <= '9' : c == form;
  });
}

// The fields of a request's body, all of them texts. The first error is kept; reading goes on with
// defaults.
class Fields {
 public:
  explicit Fields(const Dictionary& body) : body_(body) {}

  std::optional<std::string> optionalText(std::string_view key) {
    asked_.emplace_back(key);
    const Value* value = body_.find(key);
    if (value == nullptr) {
      return {};
    }
    const auto* text = value->as<std::string>();
    if (text == nullptr) {
      fail(key, "must be a text");
      return {};
    }
    return *text;
  }

  std::string text(std::string_view key) {
    const std::optional<std::string> value = optionalText(key);
    if (!value) {
      fail(key, "is missing");
    }
    return value.value_or("");
  }

  std::string moment(std::string_view key) {
    std::string value = text(key);
    if (!isMoment(value)) {
      fail(key, "must be a moment like 2026-03-07 09:05:03");
    }
    return value;
  }

  std::size_t count(std::string_view key, std::size_t max) {
    const std::string value = text(key);
    std::size_t number = 0;
    const char* end = value.data() + value.size();
    const auto result = std::from_chars(value.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end || number < 1 || number > max) {
      fail(key, "must be a whole number from 1 to " + std::to_string(max));
      return 1;
    }
    return number;
  }

  // The choice that the text stands for; nothing where the field is absent.
  template <class Choice>
  std::optional<Choice> choice(
      std::string_view key, std::initializer_list<std::pair<std::string_view, Choice>> choices) {
    const std::optional<std::string> value = optionalText(key);
    if (!value) {
      return {};
    }
    std::string names;
    for (const auto& [name, chosen] : choices) {
      if (name == *value) {
        return chosen;
      }
      names.append(names.empty() ? "" : ", ").append(name);
    }
    fail(key, "must be one of " + names);
    return {};
  }

  void fail(std::string_view key, std::string_view what) {
    if (error_.empty()) {
      error_ = "field '" + std::string(key) + "' " + std::string(what);
    }
  }

  // What is wrong with the body, a field that nobody asked for included; empty if nothing.
  std::string error() {
    for (const Dictionary::Member& member : body_) {
      if (std::ranges::find(asked_, member.key) == asked_.end()) {
        fail(member.key, "is unknown here");
      }
    }
    return error_;
  }

 private:
  const Dictionary& body_;
  std::vector<std::string> asked_;
  std::string error_;
};

Query queryOf(Fields& fields) {
  Query query;
  const auto type = fields.choice<DocumentType>(
      "type", {{"1", DocumentType::invoice}, {"2", DocumentType::estimate}});
  if (!type) {
    fields.fail("type", "is missing");
  }
  query.type = type.value_or(DocumentType::invoice);
  query.startTime = fields.moment("startTime");
  query.endTime = fields.moment("endTime");
  query.dated =
      fields
          .choice<Query::Dated>(
              "searchType", {{"1", Query::Dated::byDueDate}, {"2", Query::Dated::byCreateTime}})
          .value_or(query.dated);
  if (query.type == DocumentType::invoice) {
    query.paid = fields.choice<bool>("isFullPaid", {{"Unpaid", false}, {"Paid", true}});
  } else {
    query.estimateStatus = fields.choice<EstimateStatus>(
        "estimateStatus",
        {{"0", EstimateStatus::pending},
         {"1", EstimateStatus::approved},
         {"2", EstimateStatus::declined}});
  }
  query.valid = fields.choice<bool>("isValid", {{"1", true}, {"0", false}}).value_or(query.valid);
  query.sort = fields
                   .choice<Query::Sort>(
                       "sort",
                       {{"createTime", Query::Sort::createTime},
                        {"dueDate", Query::Sort::dueDate},
                        {"no", Query::Sort::no},
                        {"clientName", Query::Sort::clientName},
                        {"total", Query::Sort::total}})
                   .value_or(query.sort);
  query.descending =
      fields.choice<bool>("sortType", {{"desc", true}, {"asc", false}}).value_or(query.descending);
  query.page = fields.count("currentPage", 1'000'000);
  query.pageSize = fields.count("pageSize", 1000);
  return query;
}

Dictionary summaryDocument(const std::vector<Document>& documents, std::string_view currentTime) {
  const Summary summary = summarize(documents, currentTime);
  return {
      {"salesMonth", amount(summary.salesMonthCents)},
      {"unpaidInvoices", summary.unpaidInvoices},
      {"pendingEstimates", summary.pendingEstimates}};
}

Dictionary listDocument(const std::vector<Document>& documents, const Query& query) {
  const Page page = list(documents, query);
  Array records;
  for (const Document& document : page.documents) {
    records.emplace_back(rowOf(document));
  }
  const auto whole = [](std::size_t number) { return static_cast<std::int64_t>(number); };
  return {
      {"records", std::move(records)},
      {"total", whole(page.total)},
      {"current", whole(query.page)},
      {"size", whole(query.pageSize)},
      {"pages", whole((page.total + query.pageSize - 1) / query.pageSize)}};
}

// Numbers as texts, in the document and in its rows.
Dictionary withTexts(const Dictionary& document) {
  Dictionary texts;
  for (const auto& [key, value] : document) {
    if (const auto* number = value.as<Number>()) {
      texts.set(key, number->stringValue());
    } else if (const auto* rows = value.as<Array>()) {
      Array changed;
      for (const Value& row : *rows) {
        changed.emplace_back(withTexts(*row.as<Dictionary>()));
      }
      texts.set(key, std::move(changed));
    } else {
      texts.set(key, value);
    }
  }
  return texts;
}

Dictionary without(const Dictionary& document, std::string_view key) {
  Dictionary rest;
  for (const Dictionary::Member& member : document) {
    if (member.key != key) {
      rest.set(member.key, member.value);
    }
  }
  return rest;
}

// What is under "data", damaged or not.
Value payload(const Dictionary& document, Damage damage) {
  const bool isList = document.find("records") != nullptr;
  switch (damage) {
    case Damage::dataObject:
      return document;
    case Damage::innerNotJson:
      return R"({"records":[)";
    case Damage::innerArray:
      return "[]";
    case Damage::missingKey:
      return jsonText(without(document, isList ? "records" : "unpaidInvoices"));
    case Damage::figureText:
      return jsonText(withTexts(document));
    case Damage::recordsObject: {
      Dictionary changed = document;
      if (isList) {
        changed.set("records", Dictionary());
      }
      return jsonText(changed);
    }
    default:
      return jsonText(document);
  }
}

std::string packed(const Dictionary& document, Damage damage) {
  if (damage == Damage::fragment) {
    return "42";
  }
  Dictionary answer{{"code", 200}, {"message", "success"}};
  if (damage != Damage::noData) {
    answer.set("data", payload(document, damage));
  }
  return jsonText(answer);
}

// In a time that does not depend on how much of the token is right.
bool areEqual(const std::string& token, const std::string& given) {
  return given.size() == token.size() &&
         gnutls_memcmp(token.data(), given.data(), token.size()) == 0;
}

}  // namespace

Answer refuse(int status, std::string_view message) {
  return {.status = status, .body = jsonText(Dictionary{{"code", status}, {"message", message}})};
}

Gateway::Gateway(std::string token, std::string switchboardToken, std::function<Day()> clock)
    : token_(std::move(token)),
      switchboardToken_(std::move(switchboardToken)),
      clock_(std::move(clock)) {}

Answer Gateway::answer(const Request& request) {
  if (request.path == switchboardPath) {
    return answerSwitchboard(request);
  }
  const bool isPost = request.path == summaryPath || request.path == listPath;
  if (!isPost && request.path != documentsPath) {
    return refuse(404, "there is nothing at this path");
  }
  const std::string_view method = isPost ? "POST" : "GET";
  if (request.method != method) {
    return refuse(405, "this path takes " + std::string(method));
  }
  if (isPost) {
    return answerPost(request);
  }
  return areEqual(token_, request.authorization)
             ? listDocuments()
             : refuse(401, "the token in 'Authorization' is missing or wrong");
}

Answer Gateway::answerPost(const Request& request) {
  const Fault fault = faults_.take(request.path);
  Answer answer = answerWithDocuments(request, fault.damage);
  answer.delay = fault.delay;
  answer.status = fault.status.value_or(answer.status);
  if (fault.damage == Damage::notJson) {
    answer.body = "<!DOCTYPE html><title>Bad gateway</title><h1>Bad gateway</h1>\n";
    answer.contentType = "text/html";
  } else if (fault.damage == Damage::drop) {
    answer.delivery = Answer::Delivery::dropped;
  } else if (fault.damage == Damage::truncate) {
    answer.delivery = Answer::Delivery::truncated;
  }
  return answer;
}

Answer Gateway::answerWithDocuments(const Request& request, Damage damage) const {
  if (!areEqual(token_, request.authorization)) {
    return refuse(401, "the token in 'Authorization' is missing or wrong");
  }
  if (!request.contentType.starts_with("application/json")) {
    return refuse(415, "the content type must be application/json");
  }
  const auto body = readJson(request.body, JsonFragments::refused);
  const Dictionary* members = body ? body->as<Dictionary>() : nullptr;
  if (members == nullptr) {
    return refuse(400, "the body must be one JSON object");
  }

  Fields fields(*members);
  const bool isSummary = request.path == summaryPath;
  const std::string business = fields.text("businessId");
  const std::string currentTime = isSummary ? fields.moment("currentTime") : "";
  const Query query = isSummary ? Query{} : queryOf(fields);
  if (const std::string error = fields.error(); !error.empty()) {
    return refuse(400, error);
  }
  if (business != businessId) {
    return refuse(403, "the token gives no access to this business");
  }
  const std::vector<Document> documents = documentsOn(clock_());
  const Dictionary document =
      isSummary ? summaryDocument(documents, currentTime) : listDocument(documents, query);
  return {.body = packed(document, damage)};
}

// GET tells the fault in force and those on offer, POST takes the items of another one.
Answer Gateway::answerSwitchboard(const Request& request) {
  if (!areEqual(switchboardToken_, request.authorization)) {
    return refuse(403, "the switchboard's own token in 'Authorization' is missing or wrong");
  }
  if (request.method == "POST") {
    std::expected<Fault, std::string> fault = Fault::parse(request.body);
    if (!fault) {
      return refuse(400, fault.error() + "; known: " + std::string(faultHelp()));
    }
    setFault(*std::move(fault));
  } else if (request.method != "GET") {
    return refuse(405, "this path takes GET and POST");
  }
  Array offered;
  for (std::string& items : offeredFaults()) {
    offered.emplace_back(std::move(items));
  }
  const Fault fault = faults_.current();
  return {
      .body = jsonText(Dictionary{
          {"fault", fault.items()},
          {"delay", static_cast<std::int64_t>(fault.delay.count())},
          {"faults", std::move(offered)}})};
}

Answer Gateway::listDocuments() const {
  Array rows;
  for (const Document& document : documentsOn(clock_())) {
    rows.emplace_back(rowOf(document));
  }
  return {.body = jsonText(rows)};
}

}  // namespace quillpad::demo
