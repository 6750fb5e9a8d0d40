// The five widgets in their states, as display lists.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "fixtures/ScopedVariable.h"
#include "fixtures/TemporaryHome.h"
#include "paint/TextGolden.h"
#include "platform/foundation/Value.h"
#include "platform/locale/LocalizedStrings.h"
#include "platform/paint/Card.h"
#include "platform/paint/DisplayListJson.h"
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
  Dictionary item;
  item.set("clientName", name);
  item.set("total", total);
  return item;
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

DisplayList composed(const ui::View& view, const CardRequest& request) {
  static FontBook fonts;
  static TextEngine texts(fonts);
  return compose(view, request, [](const std::string&) { return Size{20, 20}; }, texts);
}

class WidgetGoldens : public ::testing::Test {
 protected:
  static void expectGolden(
      const std::string& name,
      const ui::View& view,
      CardRequest request,
      ui::Appearance appearance = ui::Appearance::unspecified) {
    request.kind = name;
    request.family = request.size == medium ? "systemMedium" : "systemSmall";
    EXPECT_TRUE(matchesGolden(name + ".json", toJson(composed(view, request), appearance)));
  }

 private:
  fixtures::TemporaryHome home_;
  fixtures::ScopedVariable locale_{"LC_ALL", "en_US.UTF-8"};
};

TEST_F(WidgetGoldens, SmallFigures) {
  const std::vector<std::pair<std::string, std::string>> figures{
      {"zero", "0"}, {"plain", "1234.5"}, {"negative", "-20"}, {"capped", "12000"}};
  for (const auto& [state, figure] : figures) {
    const quillpad::SalesMallView view{figure, "quillpad://Report"};
    expectGolden("sales-" + state, view, {});
  }
  expectGolden("unpaid-plain", quillpad::UnpaidSmallView{"3"}, {});
  expectGolden("unpaid-empty", quillpad::UnpaidSmallView{""}, {});
  expectGolden("pending-plain", quillpad::PendingSmallView{"12,5"}, {});
  expectGolden("pending-long", quillpad::PendingSmallView{"98765432109876543210"}, {});
}

TEST_F(WidgetGoldens, MediumRows) {
  for (const std::size_t count : {0, 1, 2, 3, 7}) {
    const quillpad::UnpaidMediumView view{rows(count)};
    expectGolden("unpaid-rows-" + std::to_string(count), view, {.size = medium});
  }
  expectGolden("pending-rows-2", quillpad::PendingMediumView{rows(2)}, {.size = medium});

  const quillpad::UnpaidMediumView odd{
      {row("A very long client name that cannot stand beside its sum", 1234567.891),
       row("", -3.5),
       row("Łódź 株式会社 👨‍👩‍👧‍👦", 0)}};
  expectGolden("unpaid-rows-odd", odd, {.size = medium});
}

TEST_F(WidgetGoldens, DarkAppearanceAndOtherScreens) {
  const quillpad::SalesMallView sales{"1234.5", "quillpad://Report"};
  expectGolden("sales-dark", sales, {}, ui::Appearance::dark);
  expectGolden("sales-at-3", sales, {.scale = 3});
  expectGolden("sales-smallest-screen", sales, {.size = {141, 141}});

  const quillpad::UnpaidMediumView unpaid{rows(3)};
  expectGolden("unpaid-dark-at-3", unpaid, {.size = medium, .scale = 3}, ui::Appearance::dark);
}

TEST_F(WidgetGoldens, RightToLeftLanguage) {
  const LocalizedStrings strings(BUNDLE_FOLDER);
  const auto arabic = [&](const ui::View& view) {
    return ui::localized(view, [&](const std::string& key) { return strings.text(key, "ar"); });
  };
  const CardRequest request{.rightToLeft = true, .language = "ar"};
  expectGolden(
      "sales-arabic", arabic(quillpad::SalesMallView{"12000", "quillpad://Report"}), request);

  CardRequest list = request;
  list.size = medium;
  const quillpad::UnpaidMediumView unpaid{
      {row("شركة النور للتجارة", 1250.5), row("Acme Studio", 842.25)}};
  expectGolden("unpaid-arabic", arabic(unpaid), list);
}

// Why three rows come with an inset above the header: the list is higher than the card and stands
// out of its content area evenly, and header and last hairline are still in sight.
TEST_F(WidgetGoldens, ThreeRowsStayInSight) {
  const DisplayList list =
      composed(quillpad::UnpaidMediumView{rows(3)}, {.size = medium, .scale = 2});
  const auto& header = std::get<TextItem>(list.items.at(1).content);
  const auto& hairline = std::get<Fill>(list.items.back().content);
  EXPECT_EQ(header.text, "Unpaid Invoices");
  EXPECT_NEAR(header.frame.y, 8.5, 0.5);
  EXPECT_NEAR(medium.height - (hairline.frame.y + hairline.frame.height), 4.5, 0.5);
}

// The comparison itself: what differs in one digit has to fail, and to say where.
TEST_F(WidgetGoldens, TellADifference) {
  const DisplayList list = composed(quillpad::UnpaidSmallView{"4"}, {.kind = "unpaid-plain"});
  const auto result = matchesGolden("unpaid-plain.json", toJson(list, ui::Appearance::unspecified));
  EXPECT_FALSE(result);
  EXPECT_THAT(
      result.message(), ::testing::HasSubstr("actual:     {\"type\":\"text\",\"text\":\"4\""));
}

}  // namespace
}  // namespace quillpad::drawing
