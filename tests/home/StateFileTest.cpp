#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <string>
#include <sys/stat.h>

#include "fixtures/ScopedVariable.h"
#include "fixtures/TemporaryHome.h"
#include "home/extension/StateFile.h"
#include "platform/foundation/Iso8601.h"
#include "platform/foundation/Json.h"
#include "platform/ui/ViewCodec.h"

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
      Picture{
          .source = Picture::Source::timeline,
          .entry = {*dateFromIso8601("2026-03-07T09:05:03.250Z"), 23.89},
          .view = ui::VStack(ui::Text::verbatim("Åse <b>"), ui::Spacer()).padding(16),
          .received = *dateFromIso8601("2026-03-07T09:05:04.000Z"),
          .failure = TransportError{-1004, "Could not connect to the server."},
          .failingSince = *dateFromIso8601("2026-03-07T09:00:04.000Z")});
  home.kept = home.pictures;
  home.kept.at("A").entry.data = 42;
  home.account = "a mark";
  return home;
}

std::string viewText(const ui::View& view) {
  return *writeJson(ui::toValue(view), JsonLayout::compact);
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
  const SavedHome& home = **read;
  EXPECT_EQ(home.placed, std::vector<std::string>{"A"});
  EXPECT_EQ(home.catalogue.at(0).displayName, "First \"one\"");
  EXPECT_EQ(home.catalogue.at(0).families.at(0), ui::WidgetFamily::systemMedium);
  EXPECT_EQ(home.catalogue.at(0).languages, std::vector<std::string>{"de"});
  const SavedHome original = example();
  const Picture& picture = home.pictures.at("A");
  EXPECT_EQ(picture.entry, original.pictures.at("A").entry);
  EXPECT_EQ(viewText(picture.view), viewText(original.pictures.at("A").view));
  EXPECT_EQ(picture.received, original.pictures.at("A").received);
  EXPECT_EQ(picture.failure->localizedDescription, "Could not connect to the server.");
  EXPECT_EQ(picture.failingSince, original.pictures.at("A").failingSince);
  EXPECT_EQ(home.kept.at("A").entry, original.kept.at("A").entry);
  EXPECT_EQ(home.account, "a mark");
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
  EXPECT_EQ(state->pictures.at("A").failingSince, state->pictures.at("A").received);
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
