#include <gmock/gmock.h>

#include "home/page/CanvasPage.h"

namespace quillpad::home {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const CanvasModel::Widget widget{
    .kind = "<K>", .displayName = "Name", .languages = {"ar", "de"}, .samples = {"one", "two"}};

std::size_t pictures(const CanvasQuery& query) {
  std::size_t count = 0;
  for (const CanvasRow& row : canvasRows(query, widget)) {
    count += row.cells.size();
  }
  return count;
}

TEST(CanvasPage, ShowsTheVariantsThatAreChosen) {
  const std::pair<CanvasQuery, std::size_t> cases[] = {
      {{}, 20},
      {{.screen = CanvasQuery::everything}, 200},
      {{.entry = "two", .appearance = ui::Appearance::dark}, 2},
      {{.entry = "snapshot", .language = "de"}, 2},
      {{.language = "fr"}, 0},
      {{.entry = "nobody"}, 0},
  };
  for (const auto& [query, count] : cases) {
    EXPECT_EQ(pictures(query), count) << query.entry << query.screen << query.language;
  }
}

TEST(CanvasPage, EachPictureLeadsToItselfInTheEngineersView) {
  const CanvasModel model{
      .query =
          {.entry = "one", .language = "de", .appearance = ui::Appearance::dark, .currency = "€"},
      .widgets = {widget},
      .problem = "a <problem>"};
  const std::string choices =
      "kind=%3CK%3E&amp;screen=393x852&amp;language=de&amp;currency=%E2%82%AC&amp;appearance=dark"
      "&amp;state=entry&amp;start=sample%2Fone\"";
  EXPECT_THAT(
      canvasPage(model, {}).html(),
      AllOf(
          HasSubstr("href=\"/?view=engineer&amp;" + choices),
          HasSubstr("loading=\"lazy\" src=\"/picture.svg?" + choices),
          HasSubstr(">1 picture<"),
          HasSubstr("a &lt;problem&gt;"),
          Not(HasSubstr("<K>"))));
}

TEST(CanvasPage, ShowsSoManyPicturesAndSaysThatThereAreMore) {
  const CanvasModel::Widget wide{
      .kind = "k",
      .displayName = "",
      .languages = std::vector<std::string>(100, "en"),
      .samples = {}};
  CanvasModel model{.widgets = std::vector(33, wide)};
  const auto page = [&] { return canvasPage(model, {}).html(); };
  EXPECT_THAT(page(), Not(HasSubstr("choose fewer")));
  model.widgets.resize(1000, wide);
  EXPECT_THAT(page(), HasSubstr("more than 20000 pictures; choose fewer"));
  EXPECT_LT(canvasPictures(model).size(), 21'000U);
}

TEST(CanvasQuery, ItsAddressHasWhatIsChosen) {
  EXPECT_EQ(CanvasQuery{}.toUrl("/?view=canvas"), "/?view=canvas");
  const CanvasQuery query{
      .kind = "A&b",
      .entry = "rows-emoji",
      .screen = "430x932",
      .language = "zh-Hans",
      .appearance = ui::Appearance::dark,
      .currency = "€",
      .scale = 3};
  EXPECT_EQ(
      query.toUrl("/canvas.zip"),
      "/canvas.zip?kind=A%26b&entry=rows-emoji&screen=430x932&language=zh-Hans&appearance=dark"
      "&currency=%E2%82%AC&scale=3");
}

TEST(CanvasPage, WhatIsWrongInTheAddressHasItsUsualValue) {
  const WebRequest request{
      .method = "GET",
      .path = "/",
      .parameters = {{"screen", "1x1"}, {"appearance", "sepia"}, {"kind", "<K>"}}};
  const CanvasQuery query = CanvasQuery::parse(request);
  EXPECT_EQ(query.screen + query.kind, "<K>");
  EXPECT_EQ(query.appearance, ui::Appearance::unspecified);
}

}  // namespace
}  // namespace quillpad::home
