// The five widgets as pictures, in both appearances.
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "fixtures/ScopedVariable.h"
#include "fixtures/TemporaryHome.h"
#include "paint/PictureGolden.h"
#include "platform/foundation/Bundle.h"
#include "platform/foundation/Value.h"
#include "platform/paint/Card.h"
#include "platform/paint/Pictures.h"
#include "platform/paint/PngWriter.h"
#include "platform/text/FontBook.h"
#include "platform/text/TextEngine.h"
#include "views/ListViews.h"
#include "views/SmallViews.h"

namespace quillpad::drawing {
namespace {

constexpr Size medium{338, 158};

Array rows() {
  Array list;
  const auto add = [&](const char* name, double total) {
    Dictionary row;
    row.set("clientName", std::string(name));
    row.set("total", total);
    list.emplace_back(std::move(row));
  };
  add("Acme Studio", 1250.5);
  add("Northwind Traders", 842.25);
  add("Globex Ltd", 3019.99);
  return list;
}

class WidgetPictures : public ::testing::Test {
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

  void expectGoldens(const std::string& name, const ui::View& view, const CardRequest& request) {
    for (const auto& [suffix, appearance] :
         {std::pair{"-light", ui::Appearance::light}, {"-dark", ui::Appearance::dark}}) {
      EXPECT_TRUE(showsGolden(
          {GOLDENS_FOLDER, ACTUAL_FOLDER}, name + suffix, draw(view, request, appearance)));
    }
  }

  fixtures::TemporaryHome home_;

 private:
  fixtures::ScopedVariable locale_{"LC_ALL", "en_US.UTF-8"};
  FontBook fonts_;
  TextEngine texts_{fonts_};
  Bundle bundle_{BUNDLE_FOLDER};
  Pictures pictures_{bundle_};
};

TEST_F(WidgetPictures, Small) {
  expectGoldens("sales", quillpad::SalesMallView{"1234.5", "quillpad://Report"}, {});
  expectGoldens("unpaid-small", quillpad::UnpaidSmallView{"3"}, {});
  expectGoldens("pending-small", quillpad::PendingSmallView{"5"}, {});
}

TEST_F(WidgetPictures, Medium) {
  expectGoldens("unpaid-medium", quillpad::UnpaidMediumView{rows()}, {.size = medium});
  expectGoldens("pending-medium", quillpad::PendingMediumView{rows()}, {.size = medium});
}

// Nothing can be read of what was not fetched yet, by nobody.
TEST_F(WidgetPictures, Placeholder) {
  constexpr Redaction redaction = Redaction::placeholder;
  const quillpad::SalesMallView sales{"0", "quillpad://Report"};
  const quillpad::UnpaidMediumView unpaid{rows()};
  expectGoldens("sales-placeholder", sales, {.redaction = redaction});
  expectGoldens("unpaid-placeholder", unpaid, {.size = medium, .redaction = redaction});
  expectGoldens(
      "unpaid-placeholder-mirrored",
      unpaid,
      {.size = medium, .rightToLeft = true, .redaction = redaction});
  for (const ui::View& view : {ui::View(sales), ui::View(unpaid)}) {
    const DisplayList list = composed(view, {.kind = "Kind", .redaction = redaction});
    EXPECT_EQ(accessibilityLabel(list), "Kind");
    EXPECT_GT(list.items.size(), 4U);
    for (const Item& item : list.items) {
      EXPECT_TRUE(std::holds_alternative<Fill>(item.content));
    }
  }
}

TEST_F(WidgetPictures, APlaceholderHasABarForEachLine) {
  const ui::View text = ui::Text::verbatim("two lines of text").font({20, ui::Weight::regular});
  const CardRequest request{.size = {100, 60}, .redaction = Redaction::placeholder};
  const DisplayList list = composed(text, request);
  ASSERT_EQ(list.items.size(), 3U);
  const Rect first = std::get<Fill>(list.items[1].content).frame;
  const Rect second = std::get<Fill>(list.items[2].content).frame;
  EXPECT_EQ(first.width, second.width);
  EXPECT_EQ(first.y + 24, second.y);
  EXPECT_EQ(composed(ui::Text::verbatim(""), request).items.size(), 1U);
}

// A comparison that cannot fail would prove nothing above.
TEST_F(WidgetPictures, AnotherFigureIsAnotherPicture) {
  const GoldenFolders folders{home_.path() / "goldens", home_.path() / "left"};
  const auto sales = [&](const char* figure) {
    return draw(quillpad::SalesMallView{figure, "quillpad://Report"}, {}, ui::Appearance::light);
  };
  EXPECT_FALSE(showsGolden(folders, "sales", sales("1234.5"))) << "a missing golden is recorded";
  EXPECT_TRUE(showsGolden(folders, "sales", sales("1234.5")));
  EXPECT_FALSE(showsGolden(folders, "sales", sales("1234.6")));
  for (const char* which : {"expected", "actual", "difference"}) {
    EXPECT_TRUE(std::filesystem::exists(folders.left / (std::string("sales.") + which + ".png")))
        << which;
  }
}

}  // namespace
}  // namespace quillpad::drawing
