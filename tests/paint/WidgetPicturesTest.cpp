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

constexpr Size small{158, 158};
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
  std::vector<std::uint8_t> draw(
      const ui::View& view, Size size, ui::Appearance appearance, int scale = 2) {
    const auto pictureSize = [this](const std::string& name) {
      return pictures_.naturalSize(name);
    };
    const DisplayList list = compose(view, {.size = size, .scale = scale}, pictureSize, texts_);
    return PngWriter(fonts_, pictures_).write(list, appearance).value();
  }

  void expectGoldens(const std::string& name, const ui::View& view, Size size) {
    for (const auto& [suffix, appearance] :
         {std::pair{"-light", ui::Appearance::light}, {"-dark", ui::Appearance::dark}}) {
      EXPECT_TRUE(showsGolden(
          {GOLDENS_FOLDER, ACTUAL_FOLDER}, name + suffix, draw(view, size, appearance)));
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
  expectGoldens("sales", quillpad::SalesMallView{"1234.5", "quillpad://Report"}, small);
  expectGoldens("unpaid-small", quillpad::UnpaidSmallView{"3"}, small);
  expectGoldens("pending-small", quillpad::PendingSmallView{"5"}, small);
}

TEST_F(WidgetPictures, Medium) {
  expectGoldens("unpaid-medium", quillpad::UnpaidMediumView{rows()}, medium);
  expectGoldens("pending-medium", quillpad::PendingMediumView{rows()}, medium);
}

// A comparison that cannot fail would prove nothing above.
TEST_F(WidgetPictures, AnotherFigureIsAnotherPicture) {
  const GoldenFolders folders{home_.path() / "goldens", home_.path() / "left"};
  const auto sales = [&](const char* figure) {
    return draw(quillpad::SalesMallView{figure, "quillpad://Report"}, small, ui::Appearance::light);
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
