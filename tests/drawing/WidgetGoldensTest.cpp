// The five widgets in their states, as display lists.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "drawing/TextGolden.h"
#include "platform/drawing/Card.h"
#include "platform/drawing/DisplayListJson.h"
#include "platform/drawing/FontBook.h"
#include "platform/drawing/TextEngine.h"
#include "platform/foundation/Value.h"
#include "support/ScopedVariable.h"
#include "support/TemporaryHome.h"
#include "views/PendingMediumView.h"
#include "views/PendingSmallView.h"
#include "views/SalesMallView.h"
#include "views/UnpaidMediumView.h"
#include "views/UnpaidSmallView.h"

namespace drawing {
namespace {

using foundation::Array;
using foundation::Dictionary;
using foundation::Value;

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

class WidgetGoldens : public ::testing::Test {
 protected:
  void expectGolden(const std::string& name, const ui::View& view, CardRequest request) {
    request.kind = name;
    request.family = request.size == medium ? "systemMedium" : "systemSmall";
    const auto pictureSize = [](const std::string&) { return Size{20, 20}; };
    const DisplayList list = compose(view, request, pictureSize, texts_);
    EXPECT_TRUE(matchesGolden(name + ".json", toJson(list)));
  }

 private:
  support::TemporaryHome home_;
  support::ScopedVariable locale_{"LC_ALL", "en_US.UTF-8"};
  FontBook fonts_;
  TextEngine texts_{fonts_};
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
  expectGolden("pending-long", quillpad::PendingSmallView{"98765432109876543210"}, {});
}

TEST_F(WidgetGoldens, MediumRows) {
  for (const std::size_t count : {0, 1, 2, 3, 7}) {
    const quillpad::UnpaidMediumView view{rows(count)};
    expectGolden("unpaid-rows-" + std::to_string(count), view, {.size = medium});
  }
}

}  // namespace
}  // namespace drawing
