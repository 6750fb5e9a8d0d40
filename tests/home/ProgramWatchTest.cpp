// Which writing of a program counts as its replacement: the rule alone, and on real files.
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <poll.h>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "fixtures/TemporaryHome.h"
#include "home/extension/ProgramWatch.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;
using enum FileEvent;

TEST(ReplacementRule, CountsOnceNobodyWritesAndAMomentHasPassed) {
  using Step = std::tuple<std::chrono::milliseconds, std::string, FileEvent>;
  // When it counts as replaced; 0: never.
  const std::tuple<const char*, std::vector<Step>, std::chrono::milliseconds> cases[] = {
      {"a rename", {{10ms, "a", done}}, 30ms},
      {"a linker",
       {{1ms, "a", gone}, {2ms, "a", begun}, {50ms, "a", done}, {51ms, "a", touched}},
       71ms},
      {"half a file, whose end is missed", {{1ms, "a", begun}, {5ms, "a", begun}}, 10'005ms},
      {"half a build", {{1ms, "a", begun}, {2ms, "b", done}}, 10'002ms},
      {"a whole build", {{1ms, "a", begun}, {2ms, "b", done}, {30ms, "a", done}}, 50ms},
      {"one after the other", {{1ms, "a", done}, {15ms, "b", done}}, 35ms},
      {"taken away", {{1ms, "a", gone}}, 0ms},
  };
  for (const auto& [what, steps, replacedAt] : cases) {
    ReplacementRule rule;
    for (const auto& [at, file, event] : steps) {
      EXPECT_FALSE(rule.takeReplaced(at)) << what;
      rule.happened(at, file, event);
    }
    EXPECT_EQ(rule.due().value_or(0ms), replacedAt) << what;
    EXPECT_EQ(rule.takeReplaced(1min), replacedAt != 0ms) << what;
    EXPECT_FALSE(rule.takeReplaced(2min)) << what << ", once";
  }
}

class ProgramWatchTest : public testing::Test {
 protected:
  // Whether the watch tells of a replacement soon.
  bool isReplaced(ProgramWatch& watch) {
    for (int turn = 0; turn < 20; ++turn) {
      pollfd descriptor = watch.descriptor();
      ::poll(&descriptor, 1, 1);
      now_ += 30ms;
      if (watch.run(now_)) {
        return true;
      }
    }
    return false;
  }

  void write(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file) << text;
  }

  fixtures::TemporaryFolder folder_;
  std::filesystem::path program_ = folder_.path() / "bin" / "program";
  std::filesystem::path resources_ = folder_.path() / "share";
  Uptime now_ = 1h;
};

TEST_F(ProgramWatchTest, TellsOfAWholeProgramAndOfResourcesAndOfNothingElse) {
  std::filesystem::create_directories(program_.parent_path());
  std::filesystem::create_directories(resources_ / "de.lproj");
  write(program_, "one");
  ProgramWatch watch(program_, {resources_});
  EXPECT_FALSE(isReplaced(watch));

  write(folder_.path() / "bin" / "other", "text");
  EXPECT_FALSE(isReplaced(watch)) << "another file";
  std::ofstream(program_, std::ios::app) << "";
  EXPECT_FALSE(isReplaced(watch)) << "the same as before";
  std::ofstream half(program_);
  half << "tw" << std::flush;
  EXPECT_FALSE(isReplaced(watch)) << "half of it";
  half << "o";
  half.close();
  EXPECT_TRUE(isReplaced(watch)) << "the whole";
  write(folder_.path() / "bin" / "next", "three");
  std::filesystem::rename(folder_.path() / "bin" / "next", program_);
  EXPECT_TRUE(isReplaced(watch)) << "a rename";
  EXPECT_FALSE(isReplaced(watch)) << "once";
  struct stat before{};
  ::stat(program_.c_str(), &before);
  write(program_, "THREE");
  const timespec times[] = {before.st_atim, before.st_mtim};
  ::utimensat(AT_FDCWD, program_.c_str(), times, 0);
  EXPECT_TRUE(isReplaced(watch)) << "as long, and as old by its time of writing";
  std::filesystem::remove(program_);
  EXPECT_FALSE(isReplaced(watch)) << "gone";
  std::filesystem::create_hard_link(folder_.path() / "bin" / "other", program_);
  EXPECT_TRUE(isReplaced(watch)) << "a link";

  write(resources_ / "de.lproj" / "texts", "texts");
  EXPECT_TRUE(isReplaced(watch)) << "a translation";
  std::filesystem::create_directory(resources_ / "fr.lproj");
  EXPECT_FALSE(isReplaced(watch)) << "an empty folder";
  write(resources_ / "fr.lproj" / "texts", "textes");
  EXPECT_TRUE(isReplaced(watch)) << "a translation in a new folder";
  std::ofstream(program_, std::ios::app) << "";
  EXPECT_FALSE(isReplaced(watch)) << "the same as before, after a translation";
}

TEST_F(ProgramWatchTest, FollowsALinkToTheProgram) {
  std::filesystem::create_directories(program_.parent_path());
  std::filesystem::create_directories(resources_);
  write(resources_ / "real", "one");
  std::filesystem::create_symlink(resources_ / "real", program_);
  ProgramWatch watch(program_, {});
  write(resources_ / "real", "two!");
  EXPECT_TRUE(isReplaced(watch));
  write(folder_.path() / "next", "three");
  std::filesystem::remove(program_);
  std::filesystem::create_symlink("../next", program_);
  EXPECT_TRUE(isReplaced(watch)) << "the link leads elsewhere";
  write(folder_.path() / "next", "four");
  EXPECT_TRUE(isReplaced(watch)) << "the new target changed";
  std::ofstream half(folder_.path() / "next");
  half << "fi" << std::flush;
  EXPECT_FALSE(isReplaced(watch)) << "half of it";
  std::filesystem::remove(program_);
  std::filesystem::create_symlink(resources_ / "real", program_);
  EXPECT_TRUE(isReplaced(watch)) << "the link leads away from it";
}

}  // namespace
}  // namespace quillpad::home
