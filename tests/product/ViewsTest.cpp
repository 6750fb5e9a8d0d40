// What the product's views show and where they lead. How they look, the goldens of drawing keep.
#include <gtest/gtest.h>

#include "platform/foundation/Json.h"
#include "platform/ui/ViewCodec.h"
#include "product/ProductSettings.h"
#include "views/EntryViews.h"
#include "views/ImageViews.h"

namespace quillpad {
namespace {

using Texts = std::vector<std::string>;

// The texts of a view from top to bottom, those that are looked up in brackets.
Texts textsOf(const ui::View& view) {
  if (const auto* text = std::get_if<ui::Text>(&view.content)) {
    return {text->localized ? "[" + text->text + "]" : text->text};
  }
  Texts texts;
  if (const auto* stack = std::get_if<ui::Stack>(&view.content)) {
    for (const ui::View& child : stack->children) {
      std::ranges::copy(textsOf(child), std::back_inserter(texts));
    }
  }
  return texts;
}

// The link of a whole view; empty where it has none.
std::string linkOf(const ui::View& view) {
  const auto* link = std::get_if<ui::WidgetUrl>(&view.modifiers.back());
  return link != nullptr ? link->address : "";
}

Array rows(std::size_t count) {
  Array result;
  for (std::size_t i = 1; i <= count; ++i) {
    result.emplace_back(Dictionary{{"clientName", std::to_string(i)}, {"total", 1}});
  }
  return result;
}

class ViewsTest : public ::testing::Test {
 protected:
  ProductSettings settings;
};

TEST_F(ViewsTest, LookTitlesUpShowWhatIsReceivedAsItIsAndLeadToTheirScreens) {
  const Dictionary row{{"clientName", "Sales "}, {"total", 1132.239}};
  const Dictionary odd{{"clientName", 5}, {"total", "5"}};
  const char* unpaid = "quillpad://invoiceUnpaidList";
  const char* pending = "quillpad://EstimatesPendingList";
  const std::tuple<ui::View, Texts, const char*> cases[] = {
      {SalesMallView{"1234.5", "quillpad://Report"},
       {"[Sales]", "[this month]", "$1,234.5"},
       "quillpad://Report"},
      {SalesMallView{"0", "://"}, {"[Sales]", "[this month]", "$0"}, ""},
      {UnpaidSmallView{"12,5"}, {"[Unpaid]", "[invoices]", "12,5"}, unpaid},
      {PendingSmallView{"Sales"}, {"[Pending]", "[estimates]", "Sales"}, pending},
      {UnpaidMediumView{{row, odd}},
       {"[Unpaid Invoices]", "Sales ", "$1,132.24", "", "$0"},
       unpaid},
      {PendingMediumView{{row}}, {"[Pending Estimates]", "Sales ", "$1,132.24"}, pending},
      {UnpaidMediumView{rows(7)}, {"[Unpaid Invoices]", "1", "$1", "2", "$1", "3", "$1"}, unpaid}};
  for (const auto& [view, texts, link] : cases) {
    EXPECT_EQ(textsOf(view), texts);
    EXPECT_EQ(linkOf(view), link);
  }
}

// Where the picture is smaller than its box, no drawing shows the box.
TEST_F(ViewsTest, ABadgeHoldsItsPictureInABox) {
  const auto badge = writeJson(ui::toValue(SalesImageView{}.body()), JsonLayout::compact);
  EXPECT_TRUE(badge->contains(
      R"({"minWidth":20,"idealWidth":20,"maxWidth":20,"minHeight":20,"idealHeight":20,"maxHeight":20})"))
      << *badge;
}

TEST_F(ViewsTest, AShownRecordThatIsNoRowEndsTheProcess) {
  Array records = rows(3);
  records.emplace_back("never looked at");
  EXPECT_EQ(textsOf(UnpaidMediumView{records}).size(), 7U);
  records[1] = 5;
  EXPECT_DEATH(UnpaidMediumView{records}.body(), "ListViews line [0-9]+: a record");
  EXPECT_DEATH(PendingMediumView{{Value()}}.body(), "ListViews line [0-9]+: a record");
}

TEST_F(ViewsTest, EntryViewsPassOneFieldOnInAnyFamily) {
  const Sales sales{"1", "2", "3"};
  for (const auto family : {ui::WidgetFamily::systemSmall, ui::WidgetFamily::systemMedium}) {
    const auto salesView = SalesSmallEntryView{family, {{}, sales}}.body();
    EXPECT_EQ(salesView.salesMonth, "1");
    EXPECT_EQ(salesView.linkUrl, "quillpad://Report");
    const UnpaidSmallEntryView unpaid{family, {{}, sales}};
    EXPECT_EQ(unpaid.body().unpaidInvoices, "2");
    const PendingSmallEntryView pending{family, {{}, sales}};
    EXPECT_EQ(pending.body().pendingEstimates, "3");
    const UnpaidMediumEntryView unpaidList{family, {{}, {rows(7)}}};
    EXPECT_EQ(unpaidList.body().records, rows(7));
    const PendingMediumEntryView pendingList{family, {{}, {rows(1)}}};
    EXPECT_EQ(pendingList.body().records, rows(1));
  }
}

}  // namespace
}  // namespace quillpad
