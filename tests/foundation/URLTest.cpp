#include <gtest/gtest.h>

#include "platform/foundation/URL.h"

namespace quillpad {
namespace {

TEST(URL, ParsesAndEncodesAsThePhoneDoes) {
  const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
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
      {"quillpad://Report/a%20b%20", "quillpad://Report/a%20b%20", "quillpad", "Report"},
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
  for (const char* text : {"", "://x", "1abc://x", "a b://x", "é://x"}) {
    EXPECT_FALSE(URL::parse(text)) << text;
  }
  const std::string scheme = "quillpad://";
  for (const char* rest :
       {"Rep ort", "Ré port", "h:abc", "h:-1", "h:80:80", "h%zz", "Report/\xFF"}) {
    EXPECT_FALSE(URL::parse(scheme + rest)) << rest;
  }
  for (const char* host : {"a[b", "[::1", "[", "[]", "[::1]x"}) {
    EXPECT_FALSE(URL::parse(scheme + host)) << host;
  }
}

}  // namespace
}  // namespace quillpad
