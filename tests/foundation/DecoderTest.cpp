#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <limits>

#include "platform/foundation/Decoder.h"
#include "platform/foundation/Json.h"

namespace quillpad {
namespace {

enum class Weight { regular, bold };
constexpr std::array weights{Named{"regular", Weight::regular}, Named{"bold", Weight::bold}};

Value json(std::string_view text) { return readJson(text, JsonFragments::allowed).value(); }

TEST(Decoder, ReadsEachKindAndStepsDown) {
  const Value value = json(
      R"({"font":{"size":12.5,"weight":"bold","italic":true},"sizes":[1,2],"none":null,)"
      R"("big":9223372036854775807,"small":-9223372036854775808,"at":"2026-03-07T09:05:03.250Z"})");
  const Decoder d(value);
  EXPECT_EQ(d["font"]["size"].number(), 12.5);
  EXPECT_EQ(d["font"]["weight"].text(), "bold");
  EXPECT_EQ(d["font"]["weight"].oneOf(weights), Weight::bold);
  EXPECT_TRUE(d["font"]["italic"].boolean());
  EXPECT_EQ(d["sizes"].elements(2)[1].whole<int>(1, 2), 2);
  EXPECT_EQ(d["sizes"].elements()[0].number(), 1);
  EXPECT_EQ(d["big"].whole<std::uint64_t>(), 9223372036854775807U);
  EXPECT_EQ(d["small"].whole<std::int64_t>(), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(d["at"].date(), Date(std::chrono::milliseconds(1'772'874'303'250)));
  EXPECT_EQ(d["none"].value(), Value(Null()));
  EXPECT_EQ(d["font"].members()[1].first, "weight");
  EXPECT_EQ(d["font"].members()[1].second.text(), "bold");
  EXPECT_FALSE(d.find("absent"));
  EXPECT_TRUE(d.find("none"));
  EXPECT_EQ(d.result(7), 7) << d.error();
}

TEST(Decoder, KeepsTheFirstErrorWithItsPlace) {
  const Value value =
      json(R"({"font":{"size":"12","weight":"thin"},"rows":[{"no":1.5},{"no":true}],"n":300})");
  const std::pair<std::string_view, std::function<void(const Decoder&)>> cases[] = {
      {"root.font.size: not a number", [](auto& d) { d["font"]["size"].number(); }},
      {"root.font.size: not true or false", [](auto& d) { d["font"]["size"].boolean(); }},
      {"root.font.size: not a whole number",
       [](auto& d) { d["font"]["size"].template whole<int>(); }},
      {"root.font.size: not an array", [](auto& d) { d["font"]["size"].elements(); }},
      {"root.font.size: not an object", [](auto& d) { d["font"]["size"]["x"].text(); }},
      {"root.font.size: not an object", [](auto& d) { d["font"]["size"].find("x"); }},
      {"root.font.size: not an object", [](auto& d) { d["font"]["size"].members(); }},
      {"root.font.size: not a date like 2026-03-07T09:05:03.250Z",
       [](auto& d) { d["font"]["size"].date(); }},
      {R"(root.font.weight: not one of "regular", "bold")",
       [](auto& d) { d["font"]["weight"].oneOf(weights); }},
      {R"(root.font: no "color")", [](auto& d) { d["font"]["color"]["red"].number(); }},
      {"root.rows: more than 1 elements", [](auto& d) { d["rows"].elements(1); }},
      {"root.rows[0].no: not a whole number",
       [](auto& d) { d["rows"].elements()[0]["no"].template whole<int>(); }},
      {"root.rows[1].no: not a whole number",
       [](auto& d) { d["rows"].elements()[1]["no"].template whole<int>(); }},
      {"root.rows[1].no: not a number", [](auto& d) { d["rows"].elements()[1]["no"].number(); }},
      {"root.rows[1].no: not a string", [](auto& d) { d["rows"].elements()[1]["no"].text(); }},
      {"root.n: not from 0 to 255", [](auto& d) { d["n"].template whole<std::uint8_t>(); }},
      {"root.n: even", [](auto& d) { d["n"].fail("even"); }},
      {"root: not a string", [](auto& d) { d.text(); }},
  };
  for (const auto& [error, read] : cases) {
    const Decoder d(value, "root");
    read(d);
    EXPECT_EQ(d.error(), error);
    EXPECT_EQ(d.result(7).error(), error);

    // Afterwards everything is empty, and the error stays.
    EXPECT_EQ(d["n"].whole<int>(), 0);
    EXPECT_EQ(d["n"].number(), 0);
    EXPECT_TRUE(d["rows"].elements().empty());
    EXPECT_TRUE(d["font"]["weight"].text().empty());
    EXPECT_EQ(d["rows"].value(), Value());
    EXPECT_EQ(d.error(), error);
  }
}

TEST(Decoder, NamesPlacesFromTheFirstMemberWhereTheRootHasNoName) {
  const Value value = json(R"({"a":[{}]})");
  const Decoder d(value);
  d["a"].elements()[0]["b"].text();
  EXPECT_EQ(d.error(), R"(a[0]: no "b")");

  const Decoder whole(value);
  whole.text();
  EXPECT_EQ(whole.error(), "not a string");
}

}  // namespace
}  // namespace quillpad
