#include <fstream>
#include <gmock/gmock.h>

#include "fixtures/TemporaryHome.h"
#include "home/cards/Samples.h"

namespace quillpad::home {
namespace {

TEST(Samples, AWrongEntryIsToldWithItsLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"{\n\"date\": 1\n}", "line 2: it is not an entry: date: not a string"},
      {"{\n\"date\": \"soon\",\n\"data\":0}",
       "line 2: it is not an entry: date: not a date like 2026-03-07T09:05:03.250Z"},
      {"{\"date\":\"2026-03-07T09:05:03.250Z\"}", "it is not an entry: no \"data\""},
      {"{\n\n\"date\" 1}", "line 3: it is not JSON: invalid JSON at line 3, column 8"},
      {"", "line 1: it is not JSON: invalid JSON at line 1, column 1"},
  };
  for (const auto& [text, problem] : cases) {
    const auto entry = entryFromText(text);
    ASSERT_FALSE(entry) << text;
    EXPECT_EQ(describe(entry.error()), problem);
  }
  EXPECT_EQ(lineNamedIn("Views line 3: no number in \"total\"", "{\n\n\"total\": \"x\"}"), 3U);
  EXPECT_EQ(lineNamedIn("no word", "{}"), 0U);
}

TEST(Samples, AreReadFromTheirFolderByName) {
  const fixtures::TemporaryFolder folder;
  const SampleFolder samples(folder.path());
  EXPECT_THAT(samples.entry("a").error(), testing::EndsWith("which holds none"));
  std::ofstream(folder.path() / "b.json")
      << R"({"date":"2026-03-07T09:05:03.250Z","data":{"x":1}})";
  std::ofstream(folder.path() / "notes.txt") << "no sample";
  EXPECT_THAT(samples.entry("a").error(), testing::EndsWith("; there are b"));
  const auto entry = samples.entry("b");
  ASSERT_TRUE(entry) << entry.error();
  EXPECT_TRUE(suits(*entry, Dictionary{{"x", "other"}}));
  EXPECT_FALSE(suits(*entry, Dictionary{{"x", 1}, {"y", 1}}));
  EXPECT_EQ(entryFromText(textOf(*entry)).value(), *entry);

  std::ofstream(folder.path() / "large.json") << std::string((1U << 20U) + 1, ' ');
  EXPECT_TRUE(samples.entry("b"));
  EXPECT_THAT(samples.read().error(), testing::HasSubstr("large.json cannot be read: "));
  std::filesystem::remove(folder.path() / "large.json");
  for (int number = 999; number > 700; --number) {
    std::ofstream(folder.path() / ("a" + std::to_string(number) + ".json")) << "{}";
  }
  EXPECT_EQ(samples.read().value().back().name, "a900");
}

}  // namespace
}  // namespace quillpad::home
