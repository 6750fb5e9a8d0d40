// The trees that the product's views build, and what is done with a record that breaks a contract.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "product/ProductSettings.h"
#include "product/ViewOutline.h"
#include "views/InvoiceColors.h"
#include "views/Palette.h"
#include "views/PendingMediumEntryView.h"
#include "views/PendingSmallEntryView.h"
#include "views/SalesSmallEntryView.h"
#include "views/UnpaidMediumEntryView.h"
#include "views/UnpaidSmallEntryView.h"
#include "views/WidgetRowView.h"

namespace quillpad {
namespace {
using ::testing::HasSubstr;
using ::testing::Not;

class ViewsTest : public ::testing::Test {
 protected:
  ProductSettings settings;
};

TEST_F(ViewsTest, SalesCard) {
  EXPECT_EQ(
      outline(SalesMallView{"1234.5", "quillpad://Report"}),
      R"(vstack | padding top=16 leading=16 bottom=16 trailing=16 | widgetURL quillpad://Report
  hstack
    text "Sales" localized 17 semibold #11B826
    spacer
  hstack
    text "this month" localized 12 medium #B0EFB8
    spacer
  spacer
  hstack
    text "$1,234.5" 20 semibold #000000/#FFFFFF
    spacer
  spacer
  hstack
    spacer
    vstack | frame width=32 height=32 | background #11B826 | clipShape cornerRadius=16
      image "Graph" | flexibleFrame minWidth=20 idealWidth=20 maxWidth=20 minHeight=20 idealHeight=20 maxHeight=20
)");
}

TEST_F(ViewsTest, UnpaidAndPendingCardsShowTheirFigureAsItIs) {
  EXPECT_EQ(
      outline(UnpaidSmallView{"12,5"}),
      R"(vstack | padding top=16 leading=16 bottom=16 trailing=16 | widgetURL quillpad://invoiceUnpaidList
  hstack
    text "Unpaid" localized 17 semibold #FFA11D
    spacer
  hstack
    text "invoices" localized 12 medium #FEC26E
    spacer
  spacer
  hstack
    text "12,5" 20 semibold #000000/#FFFFFF
    spacer
  spacer
  hstack
    spacer
    vstack | frame width=32 height=32 | background #FFA11D | clipShape cornerRadius=16
      image "UnpaidSmall" | flexibleFrame minWidth=20 idealWidth=20 maxWidth=20 minHeight=20 idealHeight=20 maxHeight=20
)");
  const std::string pending = outline(PendingSmallView{""});
  EXPECT_THAT(pending, HasSubstr(R"(text "Pending" localized 17 semibold #2272FF)"));
  EXPECT_THAT(pending, HasSubstr(R"(text "estimates" localized 12 medium #B0CCFF)"));
  EXPECT_THAT(pending, HasSubstr(R"(text "" 20 semibold)"));
  EXPECT_THAT(pending, HasSubstr(R"(background #2272FF)"));
  EXPECT_THAT(pending, HasSubstr(R"(image "PendingSmall")"));
  EXPECT_THAT(pending, HasSubstr("widgetURL quillpad://EstimatesPendingList\n"));
}

TEST_F(ViewsTest, AnAddressThatIsNoUrlGivesNoLink) {
  EXPECT_THAT(outline(SalesMallView{"0", "://"}), Not(HasSubstr("widgetURL")));
}

TEST_F(ViewsTest, Row) {
  EXPECT_EQ(
      outline(WidgetRowView{{{"clientName", "Dreifles"}, {"total", 1132.239}}}),
      R"(vstack
  hstack | frame height=25
    text "Dreifles" 15 regular | frame height=24
    spacer
    text "$1,132.24" 15 regular | frame height=24
  rectangle #DCDCDC | frame height=0.5 | padding top=0 leading=0 bottom=0 trailing=0
)");
}

TEST_F(ViewsTest, ARowWithoutNameAndTotalShowsNothingAndZero) {
  for (const Dictionary& item :
       {Dictionary{},
        Dictionary{{"clientName", 5}, {"total", "5"}},
        Dictionary{{"total", Array{}}}}) {
    const std::string row = outline(WidgetRowView{item});
    EXPECT_THAT(row, HasSubstr("text \"\" 15"));
    EXPECT_THAT(row, HasSubstr("text \"$0\" 15"));
  }
}

Array rows(std::size_t count) {
  Array result;
  for (std::size_t i = 1; i <= count; ++i) {
    result.emplace_back(Dictionary{{"clientName", "client " + std::to_string(i)}, {"total", 1}});
  }
  return result;
}

TEST_F(ViewsTest, ListsOfAnyLengthShowThreeRowsAndOnlyThreeRecordsGetTheInset) {
  struct Case {
    std::size_t records;
    std::size_t rowsShown;
    const char* inset;
  };
  for (const auto& [records, rowsShown, inset] : std::vector<Case>{
           {0, 0, "top=0 "},
           {1, 1, "top=0 "},
           {2, 2, "top=0 "},
           {3, 3, "top=20 "},
           {4, 3, "top=0 "},
           {7, 3, "top=0 "}}) {
    std::string expected =
        "vstack | padding top=16 leading=16 bottom=16 trailing=16"
        " | widgetURL quillpad://invoiceUnpaidList\n"
        "  hstack | padding " +
        std::string(inset) +
        "leading=0 bottom=0 trailing=0\n"
        "    text \"Unpaid Invoices\" localized 17 semibold #FFA11D\n"
        "    spacer\n";
    for (std::size_t i = 1; i <= rowsShown; ++i) {
      expected +=
          "  vstack\n"
          "    hstack | frame height=25\n"
          "      text \"client " +
          std::to_string(i) +
          "\" 15 regular | frame height=24\n"
          "      spacer\n"
          "      text \"$1\" 15 regular | frame height=24\n"
          "    rectangle #DCDCDC | frame height=0.5"
          " | padding top=0 leading=0 bottom=0 trailing=0\n";
    }
    expected += "  spacer\n  spacer\n";
    EXPECT_EQ(outline(UnpaidMediumView{rows(records)}), expected) << records;
  }
}

TEST_F(ViewsTest, PendingListDiffersInTitleColourAndLink) {
  EXPECT_EQ(
      outline(PendingMediumView{}),
      "vstack | padding top=16 leading=16 bottom=16 trailing=16"
      " | widgetURL quillpad://EstimatesPendingList\n"
      "  hstack | padding top=0 leading=0 bottom=0 trailing=0\n"
      "    text \"Pending Estimates\" localized 17 semibold #2272FF\n"
      "    spacer\n"
      "  spacer\n"
      "  spacer\n");
}

TEST_F(ViewsTest, AShownRecordThatIsNoRowEndsTheProcess) {
  Array records = rows(3);
  records.emplace_back("never looked at");
  EXPECT_THAT(outline(UnpaidMediumView{records}), HasSubstr("client 3"));
  records[1] = 5;
  EXPECT_DEATH(outline(UnpaidMediumView{records}), "DocumentListView line [0-9]+: a record");
  EXPECT_DEATH(outline(PendingMediumView{{Value()}}), "DocumentListView line [0-9]+: a record");
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
    const PendingMediumEntryView pendingList{family, {{}, {}}};
    EXPECT_EQ(pendingList.body().records, Array{});
  }
}

TEST_F(ViewsTest, TextColoursFollowTheAppearanceAndTheFixedOnesDoNot) {
  using enum ui::Appearance;
  for (const ui::Color& color : {InvoiceColors::textColor(), InvoiceColors::makeTextColor()}) {
    EXPECT_EQ(color.resolved(dark), ui::whiteColor);
    EXPECT_EQ(color.resolved(light), ui::blackColor);
    EXPECT_EQ(color.resolved(unspecified), ui::blackColor);
  }
  EXPECT_EQ(&InvoiceColors::textColor(), &InvoiceColors::textColor());
  EXPECT_EQ(ui::Color(salesAccent).resolved(dark), salesAccent);
}

}  // namespace
}  // namespace quillpad
