#include <concepts>
#include <gmock/gmock.h>

#include "home/page/GalleryPage.h"

namespace quillpad::home {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

static_assert(!std::constructible_from<Markup, std::string>, "text is escaped or trusted");
static_assert(!std::convertible_to<const char*, Markup>);

TEST(GalleryPage, ShowsEachWidgetInBothAppearancesWithItsTextsEscaped) {
  const GalleryWidget widget{
      .kind = "A\"<",
      .displayName = "Name <b>",
      .description = "About & more",
      .pictures = {{"A\"<", "", {338.4, 158}, "Sum, \"7\""}}};
  EXPECT_THAT(
      galleryPage({&widget, 1}).html(),
      AllOf(
          HasSubstr("<h2>Name &lt;b&gt;</h2>"),
          HasSubstr("<p>About &amp; more</p>"),
          HasSubstr("src=\"A&quot;&lt;-light.png\" width=\"338\" height=\"158\""),
          HasSubstr("src=\"A&quot;&lt;-dark.png\" width=\"338\" height=\"158\""),
          HasSubstr("alt=\"Sum, &quot;7&quot;\"")));
}

TEST(GalleryPage, ShowsOfAChangeThePicturesThatThereAre) {
  const PictureChange changes[] = {
      {"Changed", "a.png", "7 pixels <differ>", {158, 158}, "old", "new", "red"},
      {"Gone", "b.png", "no widget has it any more", {158, 158}, "old", "", ""}};
  EXPECT_THAT(
      changesPage("2 of 2", changes).html(),
      AllOf(
          HasSubstr("<h1>2 of 2</h1>"),
          HasSubstr("a.png: 7 pixels &lt;differ&gt;"),
          HasSubstr("base64,b2xk\""),
          HasSubstr("base64,bmV3\""),
          HasSubstr("base64,cmVk\""),
          HasSubstr("class=\"overlay\"")));
  EXPECT_THAT(
      changesPage("", {&changes[1], 1}).html(),
      AllOf(
          HasSubstr("alt=\"expected\""),
          Not(HasSubstr("alt=\"actual\"")),
          Not(HasSubstr("class=\"overlay\""))));
}

}  // namespace
}  // namespace quillpad::home
