#include <fstream>
#include <gtest/gtest.h>
#include <limits>

#include "fixtures/Program.h"
#include "platform/foundation/Iso8601.h"
#include "platform/os/WholeFile.h"
#include "platform/settings/PropertyList.h"

namespace quillpad {
namespace {

std::optional<Value> readContent(std::string_view content) {
  return readPropertyList(
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + std::string(content) +
      "</plist>");
}

Dictionary everyKind() {
  return {
      {"text", " a <b> & \"c\" 张\t\n "},
      {"blank", "  "},
      {"empty", ""},
      {"least", std::numeric_limits<std::int64_t>::min()},
      {"most", std::numeric_limits<std::uint64_t>::max()},
      {"real", 0.1 + 0.2},
      {"yes", true},
      {"no", false},
      {"date", dateFromIso8601("2026-03-07T09:05:03.000Z").value()},
      {"data", Data{std::string("\0\xFF\x10 bytes", 9)}},
      {"", Array{1, Array(), Dictionary{{"currency", "€ - EUR"}}}},
  };
}

TEST(PropertyList, ReadsBackWhatItWrites) {
  const Value value = Array{everyKind(), "\r\n"};
  const std::string text = writePropertyList(value).value();
  EXPECT_EQ(readPropertyList(text), value) << text;
}

TEST(PropertyList, ReadsEveryElement) {
  const std::pair<std::string_view, Value> cases[] = {
      {"<string/>", ""},
      {"<string>a&amp;&#x5f20;<![CDATA[<b>]]></string>", "a&张<b>"},
      {"<string>a<!-- no -->b</string>", "ab"},
      {"<integer> -5 </integer>", -5},
      {"<integer>+5</integer>", 5},
      {"<integer>0x1F</integer>", 31},
      {"<integer>18446744073709551615</integer>", std::numeric_limits<std::uint64_t>::max()},
      {"<integer>-18446744073709551616</integer>", Number(WideInteger{"-18446744073709551616"})},
      {"<real>1e3</real>", 1000.0},
      {"<true/>", true},
      {"<false></false>", false},
      {"<data>\n\tAP8Q\n\tIA==\n</data>", Data{std::string("\0\xFF\x10 ", 4)}},
      {"<data></data>", Data{}},
      {"<dict><key>a</key><true/><key>b</key><array> <true/> </array></dict>",
       Dictionary{{"a", true}, {"b", Array{true}}}},
      {"<dict><key>a</key><true/><key>a</key><false/></dict>", Dictionary{{"a", true}}},
  };
  for (const auto& [content, value] : cases) {
    EXPECT_EQ(readContent(content), value) << content;
  }
}

TEST(PropertyList, IsNothingWhenDamaged) {
  const std::pair<const char*, std::vector<const char*>> cases[] = {
      {"integer", {"", "1.5", "123456789012345678901234567890123456789"}},
      {"integer", {"0x10000000000000000", "0x"}},
      {"real", {"abc"}},
      {"date", {"yesterday", "2026-02-30T00:00:00Z"}},
      {"data", {"A", "AAA?", "A=AA"}},
      {"string", {"<true/>", "\xFF", "&#xD800;"}},
      {"dict", {"<true/>", "<key>a</key>", "<key>a</key><key>b</key><true/>"}},
      {"dict", {"<key>a</key><true/><true/>"}},
  };
  for (const auto& [kind, contents] : cases) {
    for (const std::string content : contents) {
      const std::string element = std::string("<") + kind + ">" + content + "</" + kind + ">";
      EXPECT_FALSE(readContent(element)) << element;
    }
  }
  for (const char* content : {"", "<true/><true/>", "<null/>"}) {
    EXPECT_FALSE(readContent(content)) << content;
  }
  EXPECT_FALSE(readPropertyList("<dict/>"));
  EXPECT_FALSE(readPropertyList("bplist00"));
}

TEST(PropertyList, IsNothingWhenCutOffAnywhere) {
  const std::string whole = writePropertyList(everyKind()).value();
  const std::size_t end = whole.find("</plist>") + std::string_view("</plist>").size();
  for (std::size_t length = 0; length < end; ++length) {
    ASSERT_FALSE(readPropertyList(whole.substr(0, length))) << whole.substr(0, length);
  }
}

TEST(PropertyList, StopsAt512ContainersWithinEachOther) {
  const auto nested = [](std::size_t depth) {
    std::string content;
    for (std::size_t i = 0; i < depth; ++i) {
      content += "<array>";
    }
    for (std::size_t i = 0; i < depth; ++i) {
      content += "</array>";
    }
    return content;
  };
  EXPECT_TRUE(readContent(nested(512)));
  EXPECT_FALSE(readContent(nested(513)));
  EXPECT_FALSE(readContent(nested(100'000)));
}

TEST(PropertyList, RefusesToWriteWhatItCannotHold) {
  const Value cases[] = {
      Null(),
      std::string("bell \a"),
      std::string("zero \0", 6),
      "\xFF",
      "\uFFFE",
      Dictionary{{"\x1B", 1}},
      Array{Dictionary{{"a", "\x7F\x1"}}},
  };
  for (const Value& value : cases) {
    EXPECT_FALSE(writePropertyList(value));
  }
}

// The property lists of another hand: Python's standard library reads ours and writes them anew.
TEST(PropertyList, IsThatOfPython) {
  const fixtures::TemporaryFolder folder;
  const std::string file = (folder.path() / "list.plist").string();
  const std::string program = (folder.path() / "script.py").string();
  std::ofstream(program) << R"(
import datetime, plistlib, sys
read = plistlib.load(open(sys.argv[1], 'rb'))
assert read == {
    'text': ' a <b> & "c" 张\t\n ', 'blank': '  ', 'empty': '', 'least': -2**63,
    'most': 2**64 - 1, 'real': 0.1 + 0.2, 'yes': True, 'no': False,
    'date': datetime.datetime(2026, 3, 7, 9, 5, 3), 'data': b'\x00\xff\x10 bytes',
    '': [1, [], {'currency': '€ - EUR'}],
}
plistlib.dump(read, open(sys.argv[1], 'wb'), sort_keys=False)
)";
  const std::string ours = writePropertyList(everyKind()).value();
  std::ofstream(file) << ours;
  const auto read = fixtures::Program("python3", {program, file}).wait();
  ASSERT_EQ(read.status, 0) << read.err;
  const std::string theirs = readWholeFile(file, 100'000).value();
  EXPECT_NE(theirs, ours);
  EXPECT_EQ(readPropertyList(theirs), Value(everyKind()));
}

}  // namespace
}  // namespace quillpad
