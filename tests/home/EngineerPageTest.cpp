#include <gmock/gmock.h>

#include "home/cards/WidgetSizes.h"
#include "home/page/EngineerPage.h"
#include "home/page/PreviewQuery.h"

namespace quillpad::home {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// What a server makes of the address.
WebRequest requestOf(const std::string& url) {
  WebRequest request{.method = "GET", .path = url.substr(0, url.find('?'))};
  for (std::size_t at = url.find('?'); at != std::string::npos;) {
    const std::size_t next = url.find('&', at + 1);
    const std::string pair = url.substr(at + 1, next == std::string::npos ? next : next - at - 1);
    const std::size_t equals = pair.find('=');
    std::string value;
    for (std::size_t i = equals + 1; i < pair.size(); ++i) {
      const bool coded = pair[i] == '%';
      value += coded ? static_cast<char>(std::stoi(pair.substr(i + 1, 2), nullptr, 16)) : pair[i];
      i += coded ? 2 : 0;
    }
    request.parameters.emplace(pair.substr(0, equals), value);
    at = next;
  }
  return request;
}

TEST(PreviewQuery, ItsAddressMakesTheSameChoices) {
  for (const char* url :
       {"/",
        "/picture.png?kind=SalesSmallWidget",
        "/?kind=A%26b%3D%22&screen=430x932&language=zh-Hans&appearance=dark&format=png",
        "/?scale=3&boxes=1&state=entry&entry=%7B%22date%22%3A%22%C3%A9%22%7D",
        "/?appearance=light&scale=1&state=placeholder",
        "/?state=snapshot"}) {
    const WebRequest request = requestOf(url);
    EXPECT_EQ(PreviewQuery::parse(request).toUrl(request.path), url);
  }
}

TEST(PreviewQuery, WhatIsWrongHasItsUsualValue) {
  std::istringstream choices(
      "screen=1x1 scale=4 scale=22 appearance=sepia format=gif boxes=yes state=&x=y");
  for (std::string choice; choices >> choice;) {
    const std::string url = "/?" + choice;
    EXPECT_EQ(PreviewQuery::parse(requestOf(url)).toUrl("/"), "/") << url;
  }
}

TEST(WidgetSizes, EveryScreenHasSmallAndMediumWidgets) {
  EXPECT_EQ(widgetSize(ui::WidgetFamily::systemSmall), (drawing::Size{158, 158}));
  EXPECT_EQ(widgetSize(ui::WidgetFamily::systemMedium, "414x736"), (drawing::Size{348, 157}));
  EXPECT_EQ(widgetSize(ui::WidgetFamily::systemMedium, "unknown"), (drawing::Size{338, 158}));
  EXPECT_EQ(widgetSize(ui::WidgetFamily::systemLarge, "375x667"), (drawing::Size{321, 324}));
  for (const std::string_view screen : screens()) {
    const auto small = widgetSize(ui::WidgetFamily::systemSmall, screen);
    EXPECT_EQ(small.width, small.height) << screen;
    EXPECT_GT(widgetSize(ui::WidgetFamily::systemMedium, screen).width, 2 * small.width) << screen;
  }
}

drawing::DisplayList cardOf(const std::string& text) {
  drawing::DisplayList list;
  list.size = {158, 158};
  drawing::TextItem item;
  item.text = text;
  item.frame = {1, 2, 30.126, 4};
  list.items.emplace_back().content = item;
  return list;
}

TEST(EngineerPage, ShowsEveryColumnWithItsPictures) {
  EngineerModel model{
      .query = {.kind = "<K>", .boxes = true, .source = EntrySource::snapshot, .entry = "{<\"}"},
      .kinds = {"<K>", "Other"},
      .languages = {"de"},
      .columns =
          {{.source = EntrySource::timeline, .reason = "It said <b>no</b>."},
           {.source = EntrySource::given,
            .date = "2026-03-07",
            .card = drawing::Inspection{cardOf("<i>"), {}, {-1}},
            .pictures =
                {{.appearance = ui::Appearance::light, .file = "<svg>LIGHT</svg>"},
                 {.appearance = ui::Appearance::dark, .error = "too <large>"}}}},
      .sampleEntry = "{\"sample\"}",
      .displayList = "{\n  {<list>}]}"};
  EXPECT_THAT(
      engineerPage(model, {.nonce = "n0nce"}).html(),
      AllOf(
          HasSubstr("<option value=\"&lt;K&gt;\" selected>"),
          HasSubstr("<option value=\"393x852\" selected>393x852 (158 × 158)"),
          HasSubstr("It said &lt;b&gt;no&lt;/b&gt;."),
          HasSubstr("<svg>LIGHT</svg>"),
          HasSubstr("30.13 × 4"),
          HasSubstr("too &lt;large&gt;"),
          HasSubstr("<section class=\"column\" data-state=\"entry\">"),
          Not(HasSubstr("&lt;list&gt;")),
          HasSubstr("/picture.png?kind=%3CK%3E&amp;appearance=light&amp;state=entry&amp;entry="),
          HasSubstr("placeholder=\"{&quot;sample&quot;}\"")));

  model.query.source = EntrySource::given;
  model.query.format = PictureFormat::png;
  model.query.boxes = false;
  EXPECT_THAT(
      engineerPage(model, {}).html(),
      AllOf(
          HasSubstr("alt=\"&lt;i&gt;\" src=\"data:image/png;base64,"),
          Not(HasSubstr("class=\"boxes\"")),
          HasSubstr("<section class=\"column chosen\" data-state=\"entry\">"),
          HasSubstr("{&lt;list&gt;}")));
}

}  // namespace
}  // namespace quillpad::home
