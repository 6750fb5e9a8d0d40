#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "fixtures/ScopedVariable.h"
#include "fixtures/TemporaryHome.h"
#include "home/extension/StateFile.h"
#include "platform/foundation/Iso8601.h"

namespace quillpad::home {
namespace {
using testing::HasSubstr;

SavedHome example() {
  SavedHome home{
      .catalogue =
          {{.kind = "A",
            .displayName = "First \"one\"",
            .description = "d",
            .families = {ui::WidgetFamily::systemMedium},
            .languages = {"de"}}},
      .placed = {"A"},
      .pictures = {}};
  home.pictures.emplace(
      "A",
      RenderedEntry{
          .source = EntrySource::timeline,
          .entry = {*dateFromIso8601("2026-03-07T09:05:03.250Z"), 23.89},
          .view = std::make_shared<const ui::View>(
              ui::VStack(ui::Text::verbatim("Åse <b>"), ui::Spacer()).padding(16)),
          .received = *dateFromIso8601("2026-03-07T09:05:04.000Z"),
          .failure = {
              {{-1004, "Could not connect to the server."},
               *dateFromIso8601("2026-03-07T09:00:04.000Z")}}});
  home.kept = home.pictures;
  home.kept.at("A").entry.data = 42;
  home.account = "a mark";
  return home;
}

TEST(StateFile, ReadsBackWhatItWrote) {
  const fixtures::TemporaryHome folder;
  const auto file = stateFile();
  ASSERT_TRUE(file);
  ASSERT_TRUE(writeState(*file, example()));
  struct stat status{};
  ::stat(file->c_str(), &status);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);

  const auto read = readState(*file);
  ASSERT_TRUE(read) << read.error();
  ASSERT_TRUE(*read);
  const std::string text = encodeState(example()).value();
  EXPECT_EQ(encodeState(**read), text);
  EXPECT_THAT(
      text,
      testing::ContainsRegex(
          "First.+one.+systemMedium.+de.+placed.+A.+05:04.000Z.+23.89.+Åse <b>.+to the server.+"
          "00:04.000Z.+data\":42.+a mark"));
}

// Before figures were kept, a state held neither them nor an account.
TEST(StateFile, ReadsTheStateOfAnEarlierProgram) {
  const auto state = decodeState(
      R"({"version":1,"catalogue":[],"placed":["A"],"pictures":{"A":{
          "received":"2026-03-07T09:05:04.000Z",
          "entry":{"date":"2026-03-07T09:05:03.250Z","data":1},
          "view":{"type":"spacer"},
          "failure":{"code":-1,"description":"away"}}}})");
  ASSERT_TRUE(state) << state.error();
  EXPECT_EQ(state->pictures.at("A").failure.value().since, state->pictures.at("A").received);
  EXPECT_TRUE(state->kept.empty());
  EXPECT_EQ(state->account, std::nullopt);
}

TEST(StateFile, AFileThatIsCutOffAnywhereIsNotTaken) {
  const std::string whole = *encodeState(example());
  ASSERT_TRUE(decodeState(whole));
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_FALSE(decodeState(whole.substr(0, length))) << length;
  }
}

TEST(StateFile, ForeignContentIsToldByName) {
  const fixtures::TemporaryHome folder;
  const auto file = *stateFile();
  std::filesystem::create_directories(file.parent_path());
  const std::pair<const char*, const char*> cases[] = {
      {"[]", "another version"},
      {R"({"version":2})", "another version"},
      {R"({"version":1,"placed":[],"pictures":{}})", "no \"catalogue\""},
      {R"({"version":1,"catalogue":[7],"placed":[],"pictures":{}})", "catalogue"},
      {R"({"version":1,"catalogue":[],"placed":[null],"pictures":{}})", "placed"},
      {R"({"version":1,"catalogue":[],"placed":[],"pictures":{"A":{"received":1}}})", "pictures.A"},
      {R"({"version":1,"catalogue":[],"placed":[],"pictures":{"A":{
           "received":"2026-03-07T09:05:04.000Z",
           "entry":{"date":"2026-03-07T09:05:03.250Z","data":1},
           "view":{"type":"spacer"},
           "failure":{"code":1e300,"description":"too large for any code"}}}})",
       "pictures.A.failure.code"},
  };
  for (const auto& [content, reason] : cases) {
    std::ofstream(file) << content;
    const auto read = readState(file);
    ASSERT_FALSE(read) << content;
    EXPECT_THAT(read.error(), HasSubstr(file.string()));
    EXPECT_THAT(read.error(), HasSubstr(reason));
  }
}

TEST(StateFile, LiesInTheStateFolder) {
  const fixtures::ScopedVariable home("HOME", "/home/someone");
  const fixtures::ScopedVariable state("XDG_STATE_HOME", "/elsewhere");
  EXPECT_EQ(stateFile(), "/elsewhere/quillpad/home.json");
  const fixtures::ScopedVariable unset("XDG_STATE_HOME", std::nullopt);
  EXPECT_EQ(stateFile(), "/home/someone/.local/state/quillpad/home.json");
  const fixtures::ScopedVariable relative("HOME", "somewhere");
  EXPECT_EQ(stateFile(), std::nullopt);
}

}  // namespace
}  // namespace quillpad::home
