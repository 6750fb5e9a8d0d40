#include <gtest/gtest.h>

#include "platform/foundation/URL.h"

namespace quillpad {
namespace {

TEST(URL, ParsesAndEncodesAsThePhoneDoes) {
  const struct {
    std::string_view text;
    std::string_view absolute, scheme, host;
  } cases[] = {
      {"quillpad://Report", "quillpad://Report", "quillpad", "Report"},
      {"https://localhost:8443/invoice/invoice/listFast",
       "https://localhost:8443/invoice/invoice/listFast",
       "https",
       "localhost"},
      {"https://user:pass@[::1]:8443/?a=b#c",
       "https://user:pass@[::1]:8443/?a=b#c",
       "https",
       "[::1]"},
      {"quillpad://Report?id=a b", "quillpad://Report?id=a%20b", "quillpad", "Report"},
      {"quillpad://Report/é", "quillpad://Report/%C3%A9", "quillpad", "Report"},
      {"quillpad://Report/a%20b", "quillpad://Report/a%20b", "quillpad", "Report"},
      {"quillpad://Report/a%20b c", "quillpad://Report/a%2520b%20c", "quillpad", "Report"},
      {"quillpad://Report/%zz", "quillpad://Report/%25zz", "quillpad", "Report"},
      {"quillpad://Report/%a", "quillpad://Report/%25a", "quillpad", "Report"},
      {"quillpad://Report/a\nb\t", "quillpad://Report/a%0Ab%09", "quillpad", "Report"},
      {"quillpad://Report#a#b", "quillpad://Report#a%23b", "quillpad", "Report"},
      {"quillpad://Réport", "quillpad://xn--rport-bsa", "quillpad", "xn--rport-bsa"},
      {"quillpad:Report", "quillpad:Report", "quillpad", ""},
      {"quillpad://", "quillpad://", "quillpad", ""},
      {"Report", "Report", "", ""},
      {"a/b:c", "a/b:c", "", ""},
      {"//host/x", "//host/x", "", "host"},
      {"h://h:/x", "h://h:/x", "h", "h"},
  };
  for (const auto& [text, absolute, scheme, host] : cases) {
    const std::optional<URL> url = URL::parse(text);
    ASSERT_TRUE(url) << text;
    EXPECT_EQ(url->absoluteString(), absolute);
    EXPECT_EQ(url->scheme(), scheme) << text;
    EXPECT_EQ(url->host(), host) << text;
  }
}

TEST(URL, IsNothingWhereSchemeHostOrPortIsBad) {
  for (const char* text :
       {"",
        "://x",
        "1abc://x",
        "a b://x",
        "é://x",
        "quillpad://Rep ort",
        "quillpad://Ré port",
        "quillpad://h:abc",
        "quillpad://h:-1",
        "quillpad://h:80:80",
        "quillpad://a[b",
        "quillpad://[::1",
        "quillpad://[",
        "quillpad://[]",
        "quillpad://[::1]x",
        "quillpad://h%zz",
        "quillpad://Report/\xFF"}) {
    EXPECT_FALSE(URL::parse(text)) << text;
  }
}

}  // namespace
}  // namespace quillpad
