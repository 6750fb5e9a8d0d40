#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <variant>

#include "platform/channel/Messages.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Json.h"

namespace quillpad {

namespace {

using namespace channel;
using testing::HasSubstr;

const Value entry = Dictionary{
    {"date", "2026-03-07T09:05:03.250Z"},
    {"data",
     Dictionary{{"records", Array{Dictionary{{"clientName", "宝 \n"}, {"total", 23.89}}}}}}};

TEST(MessagesTest, ARequestComesBackAsItWasSent) {
  const Request requests[] = {
      CatalogueRequest{},
      PlaceholderRequest{"A"},
      SnapshotRequest{"A"},
      TimelineRequest{"with \"quotes\"\nand lines"},
      RenderRequest{"A", entry, std::nullopt, ""},
      RenderRequest{"A", entry, ui::WidgetFamily::systemMedium, "zh_Hans_CN"},
  };
  for (const Request& request : requests) {
    const std::string line = encode(NumberedRequest{7, request});
    EXPECT_THAT(line, testing::Not(HasSubstr("\n")));
    const auto decoded = decodeRequest(line);
    ASSERT_TRUE(decoded) << line;
    EXPECT_EQ(decoded->id, 7U);
    EXPECT_EQ(encode(*decoded), line);
    EXPECT_EQ(decoded->request.index(), request.index());
  }
}

TEST(MessagesTest, AReplyTellsItsKindByItsResult) {
  const Reply replies[] = {
      Catalogue{},
      Catalogue{{{"A", "Name", "What it is", {ui::WidgetFamily::systemSmall}}}},
      Entry{entry},
      Timeline{{entry, entry}, *dateFromIso8601("2026-03-07T09:10:03.250Z")},
      Timeline{},
      Rendering{ui::VStack(ui::Text::verbatim("x"), ui::Spacer()).padding(4)},
      Dropped{},
      Refused{invalidParams, "no such kind"},
  };
  for (const Reply& reply : replies) {
    const std::string line = encode(NumberedReply{9, reply});
    const auto decoded = decodeFromExtension(line);
    ASSERT_TRUE(decoded) << line << ": " << decoded.error();
    const auto& message = std::get<NumberedReply>(*decoded);
    EXPECT_EQ(message.id, 9U);
    EXPECT_EQ(message.reply.index(), reply.index()) << line;
    EXPECT_EQ(encode(message), line);
  }
}

TEST(MessagesTest, ATransferIsToldWithItsOutcome) {
  TransferReport report;
  report.activity = 3;
  report.path = "/invoice/invoice/listFast";
  report.statusCode = 500;
  report.duration = std::chrono::microseconds(1234567);
  report.sentBytes = 321;
  report.receivedBytes = 50'000'000'000;
  const auto plain = decodeFromExtension(encode(TransferNotice{report}));
  ASSERT_TRUE(plain);
  const TransferReport& read = std::get<TransferNotice>(*plain).report;
  EXPECT_EQ(read.activity, 3U);
  EXPECT_EQ(read.path, report.path);
  EXPECT_EQ(read.statusCode, 500);
  EXPECT_EQ(read.duration, report.duration);
  EXPECT_EQ(read.sentBytes, 321U);
  EXPECT_EQ(read.receivedBytes, 50'000'000'000U);
  EXPECT_FALSE(read.error);

  report.error = TransportError{-1001, "The request timed out."};
  const auto failed = decodeFromExtension(encode(TransferNotice{report}));
  ASSERT_TRUE(failed);
  EXPECT_EQ(std::get<TransferNotice>(*failed).report.error->code, -1001);
  EXPECT_EQ(
      std::get<TransferNotice>(*failed).report.error->localizedDescription,
      "The request timed out.");
}

TEST(MessagesTest, ABadRequestIsRefusedByItsNumberWhereThatCanBeRead) {
  const struct {
    const char* line;
    std::optional<std::uint64_t> id;
    int code;
    const char* message;
  } cases[] = {
      {"", std::nullopt, parseError, "not JSON"},
      {"{\"id\":1", std::nullopt, parseError, "not JSON"},
      {"\xFF\xFE", std::nullopt, parseError, "not JSON"},
      {"[]", std::nullopt, invalidRequest, "an object"},
      {"7", std::nullopt, invalidRequest, "an object"},
      {R"({"method":"catalogue"})", std::nullopt, invalidRequest, "whole-number id"},
      {R"({"id":-1,"method":"catalogue"})", std::nullopt, invalidRequest, "whole-number id"},
      {R"({"id":true,"method":"catalogue"})", std::nullopt, invalidRequest, "whole-number id"},
      {R"({"id":1.5,"method":"catalogue"})", std::nullopt, invalidRequest, "whole-number id"},
      {R"({"id":4})", 4, invalidRequest, "method"},
      {R"({"id":4,"method":"launch"})", 4, methodNotFound, "launch"},
      {R"({"id":4,"method":"timeline"})", 4, invalidParams, "kind"},
      {R"({"id":4,"method":"timeline","params":["A"]})", 4, invalidParams, "kind"},
      {R"({"id":4,"method":"timeline","params":{"kind":4}})", 4, invalidParams, "kind"},
      {R"({"id":4,"method":"render","params":{"kind":"A"}})", 4, invalidParams, "entry"},
      {R"({"id":4,"method":"render","params":{"kind":"A","entry":0,"family":"huge"}})",
       4,
       invalidParams,
       "family"},
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

TEST(MessagesTest, WhatIsNoMessageOfTheExtensionIsToldInWords) {
  const struct {
    const char* line;
    const char* reason;
  } cases[] = {
      {"Segmentation fault", "not JSON"},
      {"[]", "no object"},
      {R"({"id":1})", "without id or result"},
      {R"({"result":{"dropped":true}})", "without id or result"},
      {R"({"id":1,"result":7})", "unknown shape"},
      {R"({"id":1,"result":{}})", "unknown shape"},
      {R"({"id":1,"result":[7]})", "without families"},
      {R"({"id":1,"result":[{"families":["huge"]}]})", "unknown family"},
      {R"({"id":1,"result":{"entries":[]}})", "reload after"},
      {R"({"id":1,"result":{"entries":[],"policy":{"after":"soon"}}})", "reload after"},
      {R"({"id":1,"result":{"view":{"what":1}}})", "view"},
  };
  for (const auto& [line, reason] : cases) {
    const auto message = decodeFromExtension(line);
    ASSERT_FALSE(message) << line;
    EXPECT_THAT(message.error(), HasSubstr(reason)) << line;
  }
}

TEST(MessagesTest, AnAnswerThatNoFrameHoldsBecomesARefusal) {
  const std::string text(longestFrame, 'x');
  for (const Value& data : {Value(text), Value("\xFF"), Value(Data{"bytes"})}) {
    const auto reply = decodeFromExtension(
        encode(NumberedReply{5, Entry{Dictionary{{"date", ""}, {"data", data}}}}));
    ASSERT_TRUE(reply);
    const auto& message = std::get<NumberedReply>(*reply);
    EXPECT_EQ(message.id, 5U);
    ASSERT_TRUE(std::holds_alternative<Refused>(message.reply));
    EXPECT_EQ(std::get<Refused>(message.reply).code, internalError);
  }
}

}  // namespace

}  // namespace quillpad
