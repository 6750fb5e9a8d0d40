// The five widgets in their states, as display lists and as pictures.
#include <gmock/gmock.h>

#include "fixtures/ScopedVariable.h"
#include "fixtures/TemporaryHome.h"
#include "paint/Golden.h"
#include "platform/foundation/Bundle.h"
#include "platform/foundation/Value.h"
#include "platform/locale/LocalizedStrings.h"
#include "platform/paint/Card.h"
#include "platform/paint/DisplayListJson.h"
#include "platform/paint/Pictures.h"
#include "platform/paint/PngWriter.h"
#include "platform/text/FontBook.h"
#include "platform/text/TextEngine.h"
#include "platform/ui/ViewCodec.h"
#include "views/ListViews.h"
#include "views/SmallViews.h"

namespace quillpad::drawing {
namespace {

constexpr Size small{158, 158};
constexpr Size medium{338, 158};

Value row(const std::string& name, double total) {
  return Dictionary{{"clientName", name}, {"total", total}};
}

// The first `count` rows of a list.
Array rows(std::size_t count) {
  Array list{
      row("Acme Studio", 1250.5),
      row("Northwind Traders", 842.25),
      row("Globex Ltd", 3019.99),
      row("Initech", 77),
      row("Umbrella", 5),
      row("Hooli", 12000),
      row("Vandelay", 0.5)};
  list.resize(count);
  return list;
}

class WidgetGoldensTest : public ::testing::Test {
 protected:
  DisplayList composed(const ui::View& view, const CardRequest& request) {
    const auto pictureSize = [this](const std::string& name) {
      return pictures_.naturalSize(name);
    };
    return compose(view, request, pictureSize, texts_);
  }

  std::vector<std::uint8_t> draw(
      const ui::View& view, const CardRequest& request, ui::Appearance appearance) {
    return PngWriter(fonts_, pictures_).write(composed(view, request), appearance).value();
  }

  void expectText(
      const std::string& name,
      const ui::View& view,
      CardRequest request,
      ui::Appearance appearance = ui::Appearance::unspecified) {
    request.kind = name;
    request.family = request.size == medium ? "systemMedium" : "systemSmall";
    EXPECT_TRUE(matchesGolden(name + ".json", toJson(composed(view, request), appearance)));
  }

  void expectPictures(const std::string& name, const ui::View& view, const CardRequest& request) {
    using enum ui::Appearance;
    EXPECT_TRUE(showsGolden(name + "-light", draw(view, request, light)));
    EXPECT_TRUE(showsGolden(name + "-dark", draw(view, request, dark)));
  }

  fixtures::TemporaryHome home_;

 private:
  fixtures::ScopedVariable locale_{"LC_ALL", "en_US.UTF-8"};
  FontBook fonts_;
  TextEngine texts_{fonts_};
  Bundle bundle_{BUNDLE_FOLDER};
  Pictures pictures_{bundle_};
};

TEST_F(WidgetGoldensTest, SmallFigures) {
  const std::vector<std::pair<std::string, std::string>> figures{
      {"zero", "0"}, {"plain", "1234.5"}, {"negative", "-20"}, {"capped", "12000"}};
  for (const auto& [state, figure] : figures) {
    const quillpad::SalesMallView view{figure, "quillpad://Report"};
    expectText("sales-" + state, view, {});
  }
  expectText("unpaid-plain", quillpad::UnpaidSmallView{"3"}, {});
  expectText("unpaid-empty", quillpad::UnpaidSmallView{""}, {});
  expectText("pending-plain", quillpad::PendingSmallView{"12,5"}, {});
  expectText("pending-long", quillpad::PendingSmallView{"98765432109876543210"}, {});
}

TEST_F(WidgetGoldensTest, MediumRows) {
  for (const std::size_t count : {0, 1, 2, 3, 7}) {
    const quillpad::UnpaidMediumView view{rows(count)};
    expectText("unpaid-rows-" + std::to_string(count), view, {.size = medium});
  }
  expectText("pending-rows-2", quillpad::PendingMediumView{rows(2)}, {.size = medium});

  const quillpad::UnpaidMediumView odd{
      {row("A very long client name that cannot stand beside its sum", 1234567.891),
       row("", -3.5),
       row("Łódź 株式会社 👨‍👩‍👧‍👦", 0)}};
  expectText("unpaid-rows-odd", odd, {.size = medium});
}

TEST_F(WidgetGoldensTest, DarkAppearanceAndOtherScreens) {
  const quillpad::SalesMallView sales{"1234.5", "quillpad://Report"};
  expectText("sales-dark", sales, {}, ui::Appearance::dark);
  expectText("sales-at-3", sales, {.scale = 3});
  expectText("sales-smallest-screen", sales, {.size = {141, 141}});

  const quillpad::UnpaidMediumView unpaid{rows(3)};
  expectText("unpaid-dark-at-3", unpaid, {.size = medium, .scale = 3}, ui::Appearance::dark);
}

TEST_F(WidgetGoldensTest, RightToLeftLanguage) {
  const LocalizedStrings strings(BUNDLE_FOLDER);
  const auto arabic = [&](const ui::View& view) {
    return ui::localized(view, [&](const std::string& key) { return strings.text(key, "ar"); });
  };
  const CardRequest request{.rightToLeft = true, .language = "ar"};
  expectText(
      "sales-arabic", arabic(quillpad::SalesMallView{"12000", "quillpad://Report"}), request);

  CardRequest list = request;
  list.size = medium;
  const quillpad::UnpaidMediumView unpaid{
      {row("شركة النور للتجارة", 1250.5), row("Acme Studio", 842.25)}};
  expectText("unpaid-arabic", arabic(unpaid), list);
}

// Why three rows come with an inset above the header: the list is higher than the card and stands
// out of its content area evenly, and header and last hairline are still in sight.
TEST_F(WidgetGoldensTest, ThreeRowsStayInSight) {
  const DisplayList list =
      composed(quillpad::UnpaidMediumView{rows(3)}, {.size = medium, .scale = 2});
  const auto& header = std::get<TextItem>(list.items.at(1).content);
  const auto& hairline = std::get<Fill>(list.items.back().content);
  EXPECT_EQ(header.text, "Unpaid Invoices");
  EXPECT_NEAR(header.frame.y, 8.5, 0.5);
  EXPECT_NEAR(medium.height - (hairline.frame.y + hairline.frame.height), 4.5, 0.5);
}

// The comparison itself: what differs in one digit has to fail, and to say where.
TEST_F(WidgetGoldensTest, TellADifference) {
  const DisplayList list = composed(quillpad::UnpaidSmallView{"4"}, {.kind = "unpaid-plain"});
  const auto result = matchesGolden("unpaid-plain.json", toJson(list, ui::Appearance::unspecified));
  EXPECT_FALSE(result);
  EXPECT_THAT(
      result.message(), ::testing::HasSubstr("actual:     {\"type\":\"text\",\"text\":\"4\""));
}

TEST_F(WidgetGoldensTest, InBothAppearances) {
  expectPictures("sales", quillpad::SalesMallView{"1234.5", "quillpad://Report"}, {});
  expectPictures("unpaid-small", quillpad::UnpaidSmallView{"3"}, {});
  expectPictures("pending-small", quillpad::PendingSmallView{"5"}, {});
  expectPictures("unpaid-medium", quillpad::UnpaidMediumView{rows(3)}, {.size = medium});
  expectPictures("pending-medium", quillpad::PendingMediumView{rows(3)}, {.size = medium});
}

// Nothing can be read of what was not fetched yet, by nobody.
TEST_F(WidgetGoldensTest, Placeholder) {
  const quillpad::SalesMallView sales{"0", "quillpad://Report"};
  const quillpad::UnpaidMediumView unpaid{rows(3)};
  expectPictures("sales-placeholder", sales, {.redacted = true});
  expectPictures("unpaid-placeholder", unpaid, {.size = medium, .redacted = true});
  expectPictures(
      "unpaid-placeholder-mirrored",
      unpaid,
      {.size = medium, .rightToLeft = true, .redacted = true});
  for (const ui::View& view : {ui::View(sales), ui::View(unpaid)}) {
    const DisplayList list = composed(view, {.kind = "Kind", .redacted = true});
    EXPECT_EQ(accessibilityLabel(list), "Kind");
    EXPECT_GT(list.items.size(), 4U);
    for (const Item& item : list.items) {
      EXPECT_TRUE(std::holds_alternative<Fill>(item.content));
    }
  }
}

TEST_F(WidgetGoldensTest, APlaceholderHasABarForEachLine) {
  const ui::View text = ui::Text::verbatim("two lines of text").font({20, ui::Weight::regular});
  const CardRequest request{.size = {100, 60}, .redacted = true};
  const DisplayList list = composed(text, request);
  ASSERT_EQ(list.items.size(), 3U);
  const Rect first = std::get<Fill>(list.items[1].content).frame;
  const Rect second = std::get<Fill>(list.items[2].content).frame;
  EXPECT_EQ(first.width, second.width);
  EXPECT_EQ(first.y + 24, second.y);
  EXPECT_EQ(composed(ui::Text::verbatim(""), request).items.size(), 1U);
}

// A comparison that cannot fail would prove nothing above.
TEST_F(WidgetGoldensTest, AnotherFigureIsAnotherPicture) {
  const GoldenFolders folders{home_.path() / "goldens", home_.path() / "left"};
  const auto sales = [&](const char* figure) {
    return draw(quillpad::SalesMallView{figure, "quillpad://Report"}, {}, ui::Appearance::light);
  };
  EXPECT_FALSE(showsGolden("sales", sales("1234.5"), folders)) << "a missing golden is recorded";
  EXPECT_TRUE(showsGolden("sales", sales("1234.5"), folders));
  EXPECT_FALSE(showsGolden("sales", sales("1234.6"), folders));
  for (const char* which : {"expected", "actual", "difference"}) {
    EXPECT_TRUE(std::filesystem::exists(folders.left / (std::string("sales.") + which + ".png")))
        << which;
  }
}

}  // namespace
}  // namespace quillpad::drawing
