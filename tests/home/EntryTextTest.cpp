#include <gtest/gtest.h>

#include "fixtures/ScopedVariable.h"
#include "home/commands/EntryText.h"
#include "home/commands/TextTable.h"
#include "platform/foundation/Iso8601.h"
#include "platform/foundation/Json.h"

namespace quillpad {

namespace {

using home::describe;
using home::TextTable;

Value json(std::string_view text) { return readJson(text, JsonFragments::refused).value(); }

class EntryTextTest : public testing::Test {
 protected:
  fixtures::ScopedVariable zone_{"TZ", "Asia/Kolkata"};
  const Date date_ = *dateFromIso8601("2026-03-07T20:05:03.250Z");
};

TEST_F(EntryTextTest, ShowsFiguresAndTheReloadTimeInLocalTime) {
  const Value data = json(R"({"salesMonth":"1234.5","unpaidInvoices":"7"})");
  const Date later = *dateFromIso8601("2026-03-07T20:10:03.250Z");
  EXPECT_EQ(
      describe(channel::Timeline{{{date_, data}}, {later}}),
      "2026-03-08 01:35:03\n"
      "  salesMonth      1234.5\n"
      "  unpaidInvoices  7\n"
      "Reloads after 2026-03-08 01:40:03\n");
}

TEST_F(EntryTextTest, ShowsRowsAsATableWhateverTheyHold) {
  const Value data =
      json(R"({"records":[{"no":"32","clientName":"宝石","total":23.89},)"
           R"({"no":"7","clientName":"Zoë\u001b[\u009b1m","total":1132.23,"lines":[1,2]},{}]})");
  EXPECT_EQ(
      describe(channel::Entry{date_, data}),
      "2026-03-08 01:35:03\n"
      "  records\n"
      "    no  clientName    total  lines\n"
      "    32  宝石          23.89\n"
      "    7   Zoë [ 1m    1132.23  [1,2]\n"
      "\n");
}

TEST_F(EntryTextTest, ShowsAnyRecord) {
  EXPECT_EQ(describe(channel::Entry{date_, json("[1]")}), "2026-03-08 01:35:03\n  [1]\n");
  EXPECT_EQ(
      describe(channel::Entry{date_, json(R"({"records":[]})")}),
      "2026-03-08 01:35:03\n  records  (none)\n");
}

TEST(TextTable, AlignsByTheWidthOnTheTerminal) {
  TextTable table;
  table.addRow({{"é"}, {"1", true}, {"x"}});
  table.addRow({{"e\xCC\x81\xCC\xA3"}, {"100", true}});
  table.addRow({{"日本"}, {"\xFF", true}, {"y"}});
  EXPECT_EQ(
      table.text(1),
      " é       1  x\n"
      " e\xCC\x81\xCC\xA3     100\n"
      " 日本    \xFF  y\n");
}

}  // namespace

}  // namespace quillpad
