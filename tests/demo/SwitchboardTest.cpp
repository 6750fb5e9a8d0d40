#include <gmock/gmock.h>

#include "demo/Gateway.h"

namespace quillpad::demo {
namespace {
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* token = "0123456789abcdef";
constexpr const char* ownToken = "fedcba9876543210";

class SwitchboardTest : public testing::Test {
 protected:
  Answer ask(const char* method, const std::string& authorization, const std::string& items = "") {
    return gateway_.answer(
        {.method = method,
         .path = std::string(Gateway::switchboardPath),
         .contentType = "text/plain",
         .authorization = authorization,
         .body = items});
  }

  int statusOfFigures() {
    return gateway_
        .answer(
            {.method = "POST",
             .path = "/invoice/invoice/getDataMap",
             .contentType = "application/json",
             .authorization = token,
             .body = R"({"businessId":"demo","currentTime":"2026-03-07 10:00:00"})"})
        .status;
  }

  Gateway gateway_{token, ownToken};
};

TEST_F(SwitchboardTest, WhoLacksItsTokenOrItsItemsSwitchesNothing) {
  ASSERT_EQ(ask("POST", ownToken, "status=503,delay=1500").status, 200);
  const std::tuple<const char*, std::string, std::string, int> cases[] = {
      {"POST", "", "off", 403},
      {"POST", token, "off", 403},
      {"POST", "fedcba9876543211", "off", 403},
      {"POST", std::string("Bearer ") + ownToken, "off", 403},
      {"GET", token, "", 403},
      {"DELETE", token, "", 403},
      {"DELETE", ownToken, "", 405},
      {"POST", ownToken, "", 400},
      {"POST", ownToken, "status=500,", 400},
      {"POST", ownToken, "off\n", 400},
      {"POST", ownToken, "delay=600001", 400},
      {"POST", ownToken, R"({"fault":"off"})", 400},
      {"POST", ownToken, std::string(60000, ','), 400},
  };
  for (const auto& [method, authorization, body, status] : cases) {
    const Answer answer = ask(method, authorization, body);
    EXPECT_EQ(answer.status, status) << method << ' ' << authorization << ' ' << body.substr(0, 40);
    EXPECT_THAT(answer.body, testing::Not(HasSubstr(ownToken)));
    EXPECT_EQ(statusOfFigures(), 503);
  }
}

TEST_F(SwitchboardTest, TellsTheFaultInForceInTheItemsThatItTakes) {
  const std::tuple<const char*, const char*, int> cases[] = {
      {"status=500", R"({"fault":"status=500","delay":0,"faults":["off",)", 500},
      {"delay=70,drop", R"({"fault":"drop","delay":70,)", 200},
      {"count=1,path=getDataMap,status=404,shape=no-data",
       R"({"fault":"status=404,shape=no-data,path=getDataMap,count=1","delay":0,)",
       404},
      {"off", R"({"fault":"off","delay":0,)", 200},
  };
  for (const auto& [ordered, told, figures] : cases) {
    EXPECT_THAT(ask("POST", ownToken, ordered).body, StartsWith(told));
    EXPECT_EQ(statusOfFigures(), figures) << ordered;
  }
  for (const std::string& items : offeredFaults()) {
    const std::string told = R"({"fault":")" + items + R"(","delay":0)";
    EXPECT_THAT(ask("POST", ownToken, items).body, StartsWith(told));
    EXPECT_THAT(ask("GET", ownToken).body, StartsWith(told));
  }
}

}  // namespace
}  // namespace quillpad::demo
