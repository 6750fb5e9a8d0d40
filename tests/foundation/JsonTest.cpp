#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "platform/foundation/Json.h"

namespace quillpad {
namespace {

std::expected<Value, JsonError> read(std::string_view text) {
  return readJson(text, JsonFragments::allowed);
}

std::string nested(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

TEST(JsonReading, KeepsEachKindOfValue) {
  const std::pair<std::string_view, Value> cases[] = {
      {"null", Null()},
      {"true", true},
      {" \t\r\n 12 ", 12},
      {"-0", 0},
      {"-0.0", -0.0},
      {"23.89", 23.89},
      {"1.0", 1.0},
      {"1e2", 100.0},
      {"1e-999", 0.0},
      {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
      {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
      {"18446744073709551615", std::numeric_limits<std::uint64_t>::max()},
      {"18446744073709551616", Number(WideInteger{"18446744073709551616"})},
      {"-9223372036854775809", Number(WideInteger{"-9223372036854775809"})},
      {"99999999999999999999999999999999999999",
       Number(WideInteger{"99999999999999999999999999999999999999"})},
      {"100000000000000000000000000000000000000", 1e38},
      {"\"\"", ""},
      {R"("\"\\\/\b\f\n\r\t\u00e9\ud83d\ude00")", "\"\\/\b\f\n\r\té😀"},
      {R"("a\u0000b")", std::string("a\0b", 3)},
      {"\"\x7F 张\"", "\x7F 张"},
      {"\xEF\xBB\xBF[]", Array()},
      {R"({"a":[1,{"b":null}],"c":{}})",
       Dictionary{{"a", Array{1, Dictionary{{"b", Null()}}}}, {"c", Dictionary()}}},
      {R"({"a":null,"b":1,"a":2,"a":3})", Dictionary{{"a", Null()}, {"b", 1}}},
  };
  for (const auto& [text, value] : cases) {
    const auto result = read(text);
    ASSERT_TRUE(result) << text << ": " << result.error().reason;
    EXPECT_EQ(*result, value) << text;
  }
}

TEST(JsonReading, KeepsTheDigitsOfWholeNumbersInTextsAndWhenWrittenAgain) {
  const std::pair<std::string, double> cases[] = {
      {"18446744073709551615", 18446744073709551615.0},
      {"18446744073709551616", 18446744073709551616.0},
      {"-9223372036854775809", -9223372036854775809.0},
      {"12345678901234567890123456789012345678", 12345678901234567890123456789012345678.0},
  };
  for (const auto& [text, value] : cases) {
    const Value number = read(text).value();
    EXPECT_EQ(number.as<Number>()->stringValue(), text);
    EXPECT_EQ(number.as<Number>()->doubleValue(), value) << text;
    EXPECT_EQ(writeJson(Array{number}, JsonLayout::compact).value(), "[" + text + "]");
  }
}

TEST(JsonReading, RefusesWhatIsNotStrictJson) {
  using namespace std::string_view_literals;
  const std::pair<const char*, std::vector<std::string_view>> cases[] = {
      {"containers", {"", "  ", "{", "[1,]", "[,]", R"({"a":1,})", R"({"a"})", R"({1:2})"}},
      {"what follows", {R"({"a":1}})", "[] []", "[]\0"sv, "// a\n1", "\xFE\xFF\0[\0]"}},
      {"numbers", {"01", "+1", ".5", "1.", "1e", "0x1", "1e309", "-1e400", "NaN", "Infinity"}},
      {"texts", {"True", "'a'", "\"a", "\"\n\"", "\"a\0b\""sv, R"("\x")", R"("\u12")"}},
      {"surrogates", {R"("\ud800")", R"("\udc00")", R"("\ud800\u0041")"}},
      {"UTF-8", {"\"\xFF\"", "\"\xC0\x80\"", "\"\xED\xA0\x80\"", "\"\xF4\x90\x80\x80\""}},
  };
  for (const auto& [what, texts] : cases) {
    for (const std::string_view text : texts) {
      const auto result = read(text);
      ASSERT_FALSE(result) << what << ": " << text;
      EXPECT_EQ(
          result.error().localizedDescription,
          "The data couldn’t be read because it isn’t in the correct format.");
    }
  }
}

TEST(JsonReading, SaysWhereTheTextIsBadWithoutQuotingIt) {
  const auto result = read("{\n  \"token\": \"secret\" oops}");
  ASSERT_FALSE(result);
  EXPECT_EQ(result.error().reason, "invalid JSON at line 2, column 21");
}

TEST(JsonReading, TakesFragmentsOnlyWhereTheyAreAllowed) {
  EXPECT_TRUE(readJson("[]", JsonFragments::refused));
  EXPECT_TRUE(readJson("{}", JsonFragments::refused));
  for (const char* fragment : {"1", "\"{}\"", "null", "true"}) {
    EXPECT_FALSE(readJson(fragment, JsonFragments::refused)) << fragment;
  }
}

TEST(JsonReading, StopsAt512ContainersWithinEachOther) {
  EXPECT_TRUE(read(nested(512)));
  EXPECT_FALSE(read(nested(513)));
  EXPECT_FALSE(read(std::string(5'000'000, '[')));
  EXPECT_TRUE(read("[" + nested(511) + "," + nested(511) + "]"));
}

TEST(JsonReading, EndsAtTheNumberOfValuesThatItIsGiven) {
  const std::pair<const char*, std::size_t> cases[] = {
      {"1", 1}, {"[]", 1}, {"[[],[],{}]", 4}, {R"({"a":[1,null],"b":"c"})", 5}};
  for (const auto& [text, values] : cases) {
    EXPECT_TRUE(readJson(text, JsonFragments::allowed, values)) << text;
    const auto refused = readJson(text, JsonFragments::allowed, values - 1);
    ASSERT_FALSE(refused) << text;
    EXPECT_EQ(refused.error().reason, "more than " + std::to_string(values - 1) + " values");
  }
}

TEST(JsonWriting, LaysPrettyTextOutAsThePhoneDoes) {
  const Value value = Dictionary{
      {"businessId", "7/8"},
      {"list", Array{1, 0.1, true, Null(), Array(), Dictionary()}},
      {"100", 100.0},
  };
  EXPECT_EQ(
      writeJson(value, JsonLayout::pretty).value(),
      "{\n"
      "  \"businessId\" : \"7\\/8\",\n"
      "  \"list\" : [\n"
      "    1,\n"
      "    0.10000000000000001,\n"
      "    true,\n"
      "    null,\n"
      "    [\n"
      "\n"
      "    ],\n"
      "    {\n"
      "\n"
      "    }\n"
      "  ],\n"
      "  \"100\" : 100\n"
      "}");
  EXPECT_EQ(writeJson(Array(), JsonLayout::pretty).value(), "[\n\n]");
}

TEST(JsonWriting, KeepsCompactTextOnOneLineAndEscapesControls) {
  const Value value = Dictionary{
      {"a\"\\", "/\b\f\n\r\t\x1F\x7F 张"},
      {"n", Array{23.89, -0.0, 1e16, 5e-324, std::numeric_limits<std::uint64_t>::max()}},
  };
  EXPECT_EQ(
      writeJson(value, JsonLayout::compact).value(),
      "{\"a\\\"\\\\\":\"/\\b\\f\\n\\r\\t\\u001f\x7F 张\","
      "\"n\":[23.89,-0.0,1e+16,5e-324,18446744073709551615]}");
}

TEST(JsonWriting, RefusesWhatJsonCannotHold) {
  const Value cases[] = {
      Date(),
      Data{"x"},
      std::nan(""),
      Array{std::numeric_limits<double>::infinity()},
      Dictionary{{"a", "\xFF"}},
      Dictionary{{"\xED\xA0\x80", 1}},
  };
  for (const Value& value : cases) {
    const auto text = writeJson(value, JsonLayout::pretty);
    ASSERT_FALSE(text);
    EXPECT_FALSE(text.error().localizedDescription.empty());
    EXPECT_FALSE(text.error().reason.empty());
  }
}

}  // namespace
}  // namespace quillpad
