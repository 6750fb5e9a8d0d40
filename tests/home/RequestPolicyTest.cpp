#include <gtest/gtest.h>

#include "home/server/RequestPolicy.h"

namespace quillpad::home {
namespace {

TEST(RequestPolicy, TakesRequestsOfItsOwnPageOnly) {
  constexpr int taken = 0;
  const std::pair<RequestHead, int> cases[] = {
      {{.method = "GET", .host = "127.0.0.1:81"}, taken},
      {{.method = "HEAD", .host = "localhost:81"}, taken},
      {{.method = "GET", .host = ""}, 421},
      {{.method = "GET", .host = "evil.example:81"}, 421},
      {{.method = "GET", .host = "127.0.0.1:8"}, 421},
      {{.method = "GET", .host = "127.0.0.1"}, 421},
      {{.method = "GET", .host = "127.0.0.1.evil.example:81"}, 421},
      {{.method = "POST", .host = "127.0.0.1:81", .origin = "http://127.0.0.1:81"}, taken},
      {{.method = "POST", .host = "127.0.0.1:81", .origin = "http://localhost:81"}, taken},
      {{.method = "POST", .host = "127.0.0.1:81", .origin = "http://evil.example"}, 403},
      {{.method = "POST", .host = "127.0.0.1:81", .origin = "null"}, 403},
      {{.method = "POST", .host = "127.0.0.1:81", .origin = "https://127.0.0.1:81"}, 403},
      {{.method = "GET", .host = "127.0.0.1:81", .origin = "http://localhost:8"}, 403},
      {{.method = "GET", .host = "127.0.0.1:81", .fetchSite = "same-origin"}, taken},
      {{.method = "GET", .host = "127.0.0.1:81", .fetchSite = "none"}, taken},
      {{.method = "GET", .host = "127.0.0.1:81", .fetchSite = "cross-site"}, 403},
      {{.method = "GET", .host = "127.0.0.1:81", .fetchSite = "same-site", .fetchMode = "cors"},
       403},
      {{.method = "DELETE", .host = "127.0.0.1:81"}, 405},
  };
  const RequestPolicy policy(81);
  for (const auto& [head, status] : cases) {
    const auto refusal = policy.refusal(head);
    EXPECT_EQ(refusal ? refusal->status : taken, status)
        << head.method << " to " << head.host << " from " << head.origin << " " << head.fetchSite;
  }
}

TEST(RequestPolicy, OtherSitesMayOnlyLinkToTheHomeScreen) {
  const std::tuple<const char*, const char*, bool, const char*, const char*, bool> cases[] = {
      {"GET", "/", false, "navigate", "document", true},
      {"POST", "/", false, "navigate", "document", false},
      {"GET", "/", true, "navigate", "document", false},
      {"GET", "/picture.svg", false, "navigate", "document", false},
      {"GET", "/", false, "navigate", "iframe", false},
      {"GET", "/", false, "no-cors", "document", false},
  };
  const RequestPolicy policy(81);
  for (const auto& [method, path, hasQuery, mode, destination, taken] : cases) {
    for (const char* site : {"cross-site", "same-site"}) {
      const RequestHead head{
          .method = method,
          .path = path,
          .hasQuery = hasQuery,
          .host = "127.0.0.1:81",
          .fetchSite = site,
          .fetchMode = mode,
          .fetchDest = destination};
      EXPECT_EQ(!policy.refusal(head), taken) << method << path << hasQuery << destination;
    }
  }
}

TEST(RequestPolicy, TheUsualPortMayBeLeftOut) {
  const RequestPolicy policy(80);
  EXPECT_FALSE(policy.refusal({.method = "GET", .host = "127.0.0.1"}));
  EXPECT_FALSE(policy.refusal({.method = "GET", .host = "127.0.0.1:80"}));
  EXPECT_FALSE(
      policy.refusal({.method = "POST", .host = "localhost", .origin = "http://localhost"}));
  EXPECT_TRUE(policy.refusal({.method = "GET", .host = "evil.example"}));
}

}  // namespace
}  // namespace quillpad::home
