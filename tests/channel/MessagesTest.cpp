#include <fstream>
#include <gmock/gmock.h>
#include <map>
#include <set>
#include <variant>

#include "platform/channel/Messages.h"

namespace quillpad {

namespace {

using namespace channel;
using testing::HasSubstr;

const Entry entry{
    Date(std::chrono::milliseconds(1'772'874'303'250)),
    Dictionary{{"records", Array{Dictionary{{"clientName", "宝 \n"}, {"total", 23.89}}}}}};

MethodOfId always(Method method) {
  return [method](std::uint64_t) { return std::optional(method); };
}

// The lines in the code blocks of docs/channel.md.
std::vector<std::string> documentedLines() {
  std::ifstream page(CHANNEL_PAGE);
  std::vector<std::string> lines;
  bool inBlock = false;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("```")) {
      inBlock = !inBlock;
    } else if (inBlock) {
      lines.push_back(line);
    }
  }
  return lines;
}

TEST(Messages, EachDocumentedLineIsReadAndWrittenAsItStands) {
  std::map<std::uint64_t, Method> methods;
  std::set<Method> asked;
  std::set<std::size_t> replied;
  int transfers = 0;
  for (const std::string& line : documentedLines()) {
    if (const auto request = decodeRequest(line)) {
      const Method method = methodOf(request->request);
      asked.insert(method);
      methods.emplace(request->id, method);
      EXPECT_EQ(encode(*request), line);
      continue;
    }
    const auto message = decodeFromExtension(line, [&](std::uint64_t id) {
      const auto method = methods.find(id);
      return method == methods.end() ? Method::ping : method->second;  // of those that are refused
    });
    ASSERT_TRUE(message) << line << ": " << message.error();
    if (const auto* reply = std::get_if<NumberedReply>(&*message)) {
      replied.insert(reply->reply.index());
      EXPECT_EQ(encode(*reply), line);
    } else {
      ++transfers;
      EXPECT_EQ(encode(std::get<TransferReport>(*message)), line);
    }
  }
  EXPECT_EQ(asked.size(), std::variant_size_v<Request>);
  EXPECT_EQ(replied.size(), std::variant_size_v<Reply>);
  EXPECT_EQ(transfers, 2);
}

TEST(Messages, TheDocumentedRefusalsAreThoseThatAreSent) {
  const std::vector<std::string> documented = documentedLines();
  for (const char* line :
       {"launch",
        R"({"jsonrpc":"2.0","id":8,"method":"launch"})",
        R"({"jsonrpc":"2.0","id":9,"method":"timeline"})"}) {
    const auto request = decodeRequest(line);
    ASSERT_FALSE(request) << line;
    EXPECT_THAT(documented, testing::Contains(encode(request.error())));
  }
}

TEST(Messages, WhatAPersonWroteComesBackAsItWasSent) {
  const Request requests[] = {
      TimelineRequest{"with \"quotes\"\nand lines"},
      RenderRequest{"A", entry, std::nullopt},
      RenderRequest{"A", entry, ui::WidgetFamily::accessoryInline, "zh_Hans_CN", "€"},
  };
  for (const Request& request : requests) {
    const std::string line = encode(NumberedRequest{0, request});
    EXPECT_THAT(line, testing::Not(HasSubstr("\n")));
    const auto decoded = decodeRequest(line);
    ASSERT_TRUE(decoded) << line;
    EXPECT_EQ(decoded->id, 0U);
    EXPECT_EQ(encode(*decoded), line);
  }
}

TEST(Messages, AReplyMayBeEmptyOrLackWhatCameLater) {
  const std::string item = R"({"kind":"A","displayName":"","description":"","families":[])";
  const std::string later = R"(,"languages":[],"linkSchemes":[])";
  const std::string timeline = R"({"entries":[],"policy":{"after":"2026-03-07T09:10:03.250Z"}})";
  const std::tuple<Method, std::string, std::string> cases[] = {
      {Method::catalogue, "[]", "[]"},
      {Method::catalogue, "[" + item + "}]", "[" + item + later + "}]"},
      {Method::snapshot, R"({"dropped":true})", R"({"dropped":true})"},
      {Method::timeline, timeline, timeline},
  };
  for (const auto& [method, result, again] : cases) {
    const auto message = decodeFromExtension(R"({"id":0,"result":)" + result + "}", always(method));
    ASSERT_TRUE(message) << result << ": " << message.error();
    EXPECT_EQ(
        encode(std::get<NumberedReply>(*message)),
        R"({"jsonrpc":"2.0","id":0,"result":)" + again + "}");
  }
}

TEST(Messages, ABadRequestIsRefusedByItsNumberWhereThatCanBeRead) {
  const std::tuple<const char*, std::optional<std::uint64_t>, int, const char*> cases[] = {
      {"", std::nullopt, parseError, "invalid JSON at line 1, column 1"},
      {"\xFF\xFE", std::nullopt, parseError, "invalid JSON"},
      {"[]", std::nullopt, invalidRequest, "request: not an object"},
      {R"({"method":"catalogue"})", std::nullopt, invalidRequest, R"(request: no "id")"},
      {R"({"id":-1,"method":"catalogue"})", std::nullopt, invalidRequest, "request.id: not from 0"},
      {R"({"id":1.5,"method":"ping"})", std::nullopt, invalidRequest, "id: not a whole number"},
      {R"({"id":4})", 4, invalidRequest, R"(request: no "method")"},
      {R"({"id":4,"method":"launch"})", 4, methodNotFound, "launch"},
      {R"({"id":4,"method":"timeline"})", 4, invalidParams, R"(params: no "kind")"},
      {R"({"id":4,"method":"render","params":{"kind":"A"}})", 4, invalidParams, R"(no "entry")"},
      {R"({"id":4,"method":"render","params":{"kind":"A","entry":{"date":"now","data":0}}})",
       4,
       invalidParams,
       "params.entry.date: not a date"},
      {R"({"id":4,"method":"render","params":{"kind":"A","family":"huge",)"
       R"("entry":{"date":"2026-03-07T09:05:03.250Z","data":0}}})",
       4,
       invalidParams,
       R"(params.family: not one of "systemSmall", "systemMedium", "systemLarge")"},
  };
  for (const auto& [line, id, code, message] : cases) {
    const auto request = decodeRequest(line);
    ASSERT_FALSE(request) << line;
    EXPECT_EQ(request.error().id, id) << line;
    const auto& refused = std::get<Refused>(request.error().reply);
    EXPECT_EQ(refused.code, code) << line;
    EXPECT_THAT(refused.message, HasSubstr(message)) << line;
  }
}

TEST(Messages, WhatIsNoMessageOfTheExtensionIsToldInWords) {
  std::string countless = "[]";
  for (std::size_t i = 0; i < maxValues; ++i) {
    countless += ",[]";
  }
  const std::tuple<std::string, Method, const char*> cases[] = {
      {"Segmentation fault", Method::ping, "invalid JSON at line 1, column 1"},
      {"[]", Method::ping, "a message that cannot be read: not an object"},
      {R"({"method":"launch"})", Method::ping, R"(method: not "transfer")"},
      {R"({"method":"transfer"})", Method::ping, R"(no "params")"},
      {R"({"method":"transfer","params":{"activity":-1}})", Method::ping, "params.activity: not"},
      {R"({"id":1})", Method::ping, R"(no "result")"},
      {R"({"result":{"dropped":true}})", Method::timeline, R"(no "id")"},
      {R"({"id":null,"result":{}})", Method::ping, "id: not a whole number"},
      {R"({"id":1,"error":{"code":1}})", Method::ping, R"(error: no "message")"},
      {R"({"id":1,"result":{}})", Method::catalogue, "result: not an array"},
      {R"({"id":1,"result":{"entries":[]}})", Method::timeline, R"(result: no "policy")"},
      {R"({"id":1,"result":{"dropped":true}})", Method::placeholder, R"(result: no "date")"},
      {R"({"id":1,"result":{"view":{"what":1}}})", Method::render, R"(result.view: no "type")"},
      {"[" + countless + "]", Method::ping, "more than 200000 values"},
  };
  for (const auto& [line, method, reason] : cases) {
    const auto message = decodeFromExtension(line, always(method));
    ASSERT_FALSE(message) << line;
    EXPECT_THAT(message.error(), HasSubstr(reason)) << line;
  }
}

TEST(Messages, AReplyToNoRequestUnderWayIsNotRead) {
  for (const char* line :
       {R"({"id":9,"result":"anything"})", R"({"id":9,"error":{"code":1,"message":""}})"}) {
    const auto message = decodeFromExtension(line, [](std::uint64_t) { return std::nullopt; });
    ASSERT_TRUE(message) << message.error();
    EXPECT_TRUE(std::holds_alternative<StrayReply>(*message));
  }
}

TEST(Messages, AnAnswerThatNoFrameHoldsBecomesARefusal) {
  const std::size_t rest = encode(NumberedReply{5, Entry{Date(), ""}}).size();
  const std::string longest(maxFrame - rest, 'x');
  EXPECT_EQ(encode(NumberedReply{5, Entry{Date(), longest}}).size(), maxFrame);
  for (const Value& data : {Value(longest + "x"), Value("\xFF"), Value(Data{"bytes"})}) {
    const auto reply = decodeFromExtension(
        encode(NumberedReply{5, Entry{Date(), data}}), always(Method::snapshot));
    ASSERT_TRUE(reply);
    const auto& message = std::get<NumberedReply>(*reply);
    EXPECT_EQ(message.id, 5U);
    ASSERT_TRUE(std::holds_alternative<Refused>(message.reply));
    EXPECT_EQ(std::get<Refused>(message.reply).code, internalError);
  }
}

}  // namespace

}  // namespace quillpad
