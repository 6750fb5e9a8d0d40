#include <functional>
#include <gmock/gmock.h>

#include "platform/foundation/Json.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad::ui {
namespace {

using enum Weight;
using ::testing::HasSubstr;

std::string json(const Value& value) { return writeJson(value, JsonLayout::compact).value(); }

Value parsed(const std::string& text) { return readJson(text, JsonFragments::allowed).value(); }

// A tree with every content and every modifier.
View everything() {
  return VStack(
             Text("Sales").font({17, semibold}).foregroundColor(Rgba{17, 184, 38}),
             HStack(
                 Text::verbatim("<b>\"1\"</b>").font({12.5, medium}),
                 Spacer(),
                 Image("Graph").frame({.minWidth = 20, .idealHeight = 1, .maxHeight = 30}))
                 .background(Color(Rgba{1, 2, 3, 4}, whiteColor))
                 .clipShape({.cornerRadius = 16}),
             Rectangle(Rgba{220, 220, 220}).frame({.height = 0.5}).padding(0))
      .padding({.top = 20, .leading = 1, .bottom = 2, .trailing = 3})
      .widgetURL(URL::parse("quillpad://Report"));
}

TEST(ViewCodec, WritesATreeThatReadsAsItLooksAndReadsItBack) {
  const std::string written = json(toValue(everything()));
  EXPECT_EQ(
      written,
      R"({"type":"vstack","children":[)"
      R"({"type":"text","text":"Sales","localized":true,"font":{"size":17,"weight":"semibold"},)"
      R"("color":{"light":"#11B826","dark":"#11B826"}},)"
      R"({"type":"hstack","children":[)"
      R"({"type":"text","text":"<b>\"1\"</b>","font":{"size":12.5,"weight":"medium"}},)"
      R"({"type":"spacer"},)"
      R"({"type":"image","name":"Graph","modifiers":[)"
      R"({"flexibleFrame":{"minWidth":20,"idealHeight":1,"maxHeight":30}}]}],)"
      R"("modifiers":[{"background":{"light":"#01020304","dark":"#FFFFFF"}},)"
      R"({"clipShape":{"cornerRadius":16}}]},)"
      R"({"type":"rectangle","color":{"light":"#DCDCDC","dark":"#DCDCDC"},)"
      R"("modifiers":[{"frame":{"height":0.5}},)"
      R"({"padding":{"top":0,"leading":0,"bottom":0,"trailing":0}}]}],)"
      R"("modifiers":[{"padding":{"top":20,"leading":1,"bottom":2,"trailing":3}},)"
      R"({"widgetURL":"quillpad://Report"}]})");
  const auto read = viewFromValue(parsed(written));
  ASSERT_TRUE(read) << read.error();
  EXPECT_EQ(json(toValue(*read)), written);
}

TEST(ViewCodec, LooksUpKeysAndLeavesVerbatimTextsAlone) {
  const View view = localized(
      VStack(HStack(Text("Sales")), Text::verbatim("Sales"), Text("unknown")).padding(1),
      [](const std::string& key) { return key == "Sales" ? "Umsatz" : key; });
  EXPECT_EQ(
      json(toValue(view)),
      json(toValue(
          VStack(
              HStack(Text::verbatim("Umsatz")), Text::verbatim("Sales"), Text::verbatim("unknown"))
              .padding(1))));
}

TEST(ViewCodec, NamesTheFirstThingWrongByItsPlace) {
  const std::pair<const char*, const char*> cases[] = {
      {"null", "view: not an object"},
      {"{}", R"(view: no "type")"},
      {R"({"type":"grid"})",
       R"(view.type: not one of "text", "image", "rectangle", "spacer", "vstack", "hstack")"},
      {R"({"type":"image"})", R"(view: no "name")"},
      {R"({"type":"text","text":"a"})", R"(view: no "font")"},
      {R"({"type":"text","text":"a","font":{"size":0,"weight":"regular"}})",
       "view.font.size: not above 0"},
      {R"({"type":"text","text":"a","font":{"size":9,"weight":"bold"}})",
       R"(view.font.weight: not one of "regular", "medium", "semibold")"},
      {R"({"type":"text","text":"a","localized":1,"font":{"size":9,"weight":"regular"}})",
       "view.localized: not true or false"},
      {R"({"type":"vstack","children":[{"type":"spacer"},{"type":"hstack","children":[7]}]})",
       "view.children[1].children[0]: not an object"},
      {R"({"type":"rectangle","color":{"light":"#11B826","dark":"#11B82"}})",
       R"(view.color.dark: not a colour like "#11B826")"},
      {R"({"type":"rectangle","color":{"light":"#-1B826","dark":"#11B826"}})",
       R"(view.color.light: not a colour like "#11B826")"},
      {R"({"type":"spacer","modifiers":[{}]})", "view.modifiers[0]: not an object with one member"},
      {R"({"type":"spacer","modifiers":[{"blur":{}}]})", "view.modifiers[0]: unknown modifier"},
      {R"({"type":"spacer","modifiers":[{"padding":{"top":0,"leading":0,"bottom":0}}]})",
       R"(view.modifiers[0].padding: no "trailing")"},
      {R"({"type":"spacer","modifiers":[{"clipShape":{"cornerRadius":1e300}}]})",
       "view.modifiers[0].clipShape.cornerRadius: longer than 1000000 points"}};
  for (const auto& [text, error] : cases) {
    const auto view = viewFromValue(parsed(text));
    ASSERT_FALSE(view) << text;
    EXPECT_EQ(view.error(), error) << text;
  }
}

Value nested(std::size_t depth) {
  Value view = Dictionary{{"type", "spacer"}};
  for (std::size_t i = 1; i < depth; ++i) {
    view = Dictionary{{"type", "vstack"}, {"children", Array{std::move(view)}}};
  }
  return view;
}

Value modified(std::size_t count) {
  View view = Spacer();
  for (std::size_t i = 0; i < count; ++i) {
    view = std::move(view).padding(1);
  }
  return toValue(view);
}

Value wide(std::size_t count) {
  const Value spacer = Dictionary{{"type", "spacer"}};
  return Dictionary{{"type", "hstack"}, {"children", Array(count - 1, spacer)}};
}

Value wrapped(std::size_t count) {
  return Dictionary{{"type", "hstack"}, {"children", Array(count, modified(24))}};
}

// Longer texts count as little as may be shaped of them.
Value verbose(std::size_t count) {
  const Value text = toValue(Text(std::string(100'000, 'a')));
  return Dictionary{{"type", "vstack"}, {"children", Array(count, text)}};
}

TEST(ViewCodec, TakesAsMuchAsItsBoundsAndNoMore) {
  const std::tuple<Value (*)(std::size_t count), std::size_t, const char*> cases[] = {
      {modified, 32, "view.modifiers: more than 32 elements"},
      {nested, 256, "more than 256 views deep"},
      {wide, 10'000, "more than 10000 views and modifiers"},
      {wrapped, 399, "more than 10000 views and modifiers"},
      {verbose, 4, "more than 64 KiB of texts"},
  };
  for (const auto& [make, most, error] : cases) {
    EXPECT_TRUE(viewFromValue(make(most))) << error;
    const auto refused = viewFromValue(make(most + 1));
    ASSERT_FALSE(refused) << error;
    EXPECT_THAT(refused.error(), HasSubstr(error));
  }
}

// Replaces the values inside `value` one after another by `replacement` and calls `visit` with the
// whole each time.
void forEachReplacement(
    const Value& value, const Value& replacement, const std::function<void(const Value&)>& visit) {
  visit(replacement);
  if (const auto* array = value.as<Array>()) {
    for (std::size_t i = 0; i < array->size(); ++i) {
      forEachReplacement((*array)[i], replacement, [&](const Value& changed) {
        Array copy = *array;
        copy[i] = changed;
        visit(Value(std::move(copy)));
      });
    }
  } else if (const auto* dictionary = value.as<Dictionary>()) {
    for (const auto& member : *dictionary) {
      forEachReplacement(member.value, replacement, [&](const Value& changed) {
        Dictionary copy = *dictionary;
        copy.set(member.key, changed);
        visit(Value(std::move(copy)));
      });
    }
  }
}

TEST(ViewCodec, TakesOnlyTreesThatItCouldHaveWritten) {
  int taken = 0;
  int refused = 0;
  const std::vector<Value> replacements{
      Value(), true, -1, 1e7, "text", Array{}, Array{1}, Dictionary{}, Dictionary{{"a", 1}}};
  for (const Value& replacement : replacements) {
    forEachReplacement(toValue(everything()), replacement, [&](const Value& changed) {
      const auto view = viewFromValue(changed);
      if (!view) {
        ++refused;
        return;
      }
      ++taken;
      EXPECT_TRUE(viewFromValue(toValue(*view))) << json(changed);
    });
  }
  EXPECT_GT(taken, 0);
  EXPECT_GT(refused, taken);
}

}  // namespace
}  // namespace quillpad::ui
