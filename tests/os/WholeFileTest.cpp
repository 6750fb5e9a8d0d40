#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fixtures/TemporaryHome.h"
#include "platform/os/WholeFile.h"

namespace quillpad {
namespace {

constexpr std::size_t plenty = 1 << 20;

class WholeFileTest : public testing::Test {
 protected:
  WholeFileTest() { ::umask(022); }
  ~WholeFileTest() override { ::umask(previousMask_); }

  std::filesystem::path file(const char* name) const { return folder_.path() / name; }
  auto filesInFolder() const {
    return std::distance(std::filesystem::directory_iterator(folder_.path()), {});
  }
  static mode_t modeOf(const std::filesystem::path& file) {
    return static_cast<mode_t>(std::filesystem::status(file).permissions());
  }

  fixtures::TemporaryFolder folder_;
  mode_t previousMask_ = ::umask(0);
};

TEST_F(WholeFileTest, TheModeIsTheOldOneTheUmasksOrTheOwnersAlone) {
  constexpr mode_t none = 0;  // before: a new file
  const std::tuple<FileAccess, mode_t, mode_t> cases[] = {
      {FileAccess::ownerOnly, none, 0600},
      {FileAccess::ownerOnly, 0644, 0600},
      {FileAccess::asBefore, none, 0644},
      {FileAccess::asBefore, 0600, 0600},
      {FileAccess::asBefore, 0666, 0666},
  };
  for (const auto& [access, before, after] : cases) {
    const auto path = file("file");
    std::filesystem::remove(path);
    if (before != none) {
      std::ofstream(path) << "old";
      ASSERT_EQ(::chmod(path.c_str(), before), 0);
    }
    EXPECT_FALSE(writeWholeFile(path, "new", {access}));
    EXPECT_EQ(readWholeFile(path, plenty), "new");
    EXPECT_EQ(modeOf(path), after);
    EXPECT_EQ(filesInFolder(), 1);
  }
}

TEST_F(WholeFileTest, ALinkStaysAndADeviceIsWrittenTo) {
  std::filesystem::create_directory(file("folder"));
  std::filesystem::create_symlink("../target", file("folder/link"));
  std::filesystem::create_symlink("folder/link", file("link"));
  for (const char* text : {"made", "replaced"}) {
    EXPECT_FALSE(writeWholeFile(file("link"), text));
    EXPECT_TRUE(std::filesystem::is_symlink(file("link")));
    EXPECT_TRUE(std::filesystem::is_symlink(file("folder/link")));
    EXPECT_EQ(readWholeFile(file("target"), plenty), text);
  }
  std::filesystem::create_symlink("loop", file("loop"));
  EXPECT_EQ(writeWholeFile(file("loop"), "x"), std::errc::too_many_symbolic_link_levels);

  EXPECT_FALSE(writeWholeFile("/dev/null", "lost"));
  EXPECT_EQ(writeWholeFile("/dev/full", "x"), std::errc::no_space_on_device);
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
  ASSERT_EQ(::mkfifo(file("pipe").c_str(), 0600), 0);
  EXPECT_EQ(writeWholeFile(file("pipe"), "x"), std::errc::no_such_device_or_address);
}

TEST_F(WholeFileTest, WhatCannotBeWrittenIsToldAndLeavesNothing) {
  std::filesystem::create_directory(file("folder"));
  EXPECT_EQ(writeWholeFile(file("absent/file"), "x"), std::errc::no_such_file_or_directory);
  EXPECT_EQ(writeWholeFile(file("folder"), "x"), std::errc::is_a_directory);
  EXPECT_TRUE(writeWholeFile(file(std::string(300, 'n').c_str()), "x"));
  EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(WholeFileTest, PiecesAreInPlaceAllOfThemOrNone) {
  const auto write = [&](std::error_code error) {
    return writeWholeFile(file("file"), [error](const TakePiece& take) {
      EXPECT_FALSE(take("one, "));
      EXPECT_FALSE(take("two"));
      return error;
    });
  };
  EXPECT_FALSE(write({}));
  EXPECT_EQ(readWholeFile(file("file"), plenty), "one, two");
  std::ofstream(file("file")) << "old";
  EXPECT_EQ(write(std::make_error_code(std::errc::file_too_large)), std::errc::file_too_large);
  EXPECT_EQ(readWholeFile(file("file"), plenty), "old");
  EXPECT_EQ(filesInFolder(), 1);
}

// Files of a megabyte, killed at any point of the way.
TEST_F(WholeFileTest, AKilledWriterLeavesTheOldOrTheNewFileAndNoOther) {
  const std::string bytes[] = {std::string(1 << 20, 'a'), std::string(1 << 20, 'b')};
  std::string before = bytes[0];
  int changes = 0;
  ASSERT_FALSE(writeWholeFile(file("file"), before));
  for (int round = 0; round < 30; ++round) {
    const pid_t writer = ::fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
      for (int turn = before == bytes[0] ? 1 : 0;; ++turn) {
        if (writeWholeFile(file("file"), bytes[turn % 2], {.durability = Durability::unsynced})) {
          ::_exit(1);
        }
      }
    }
    ::usleep(static_cast<useconds_t>(1000 + round * 700));
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    const auto found = readWholeFile(file("file"), 2 * plenty);
    ASSERT_TRUE(found == bytes[0] || found == bytes[1]);
    changes += *found == before ? 0 : 1;
    before = *found;
  }
  EXPECT_GT(changes, 0);
  // A name is in use only between a link and the rename that follows it at once.
  EXPECT_LE(filesInFolder(), 2);
}

TEST_F(WholeFileTest, WhatAKilledWriterLeftGoesWithTheNextPrivateFile) {
  const pid_t ended = ::fork();
  if (ended == 0) {
    ::_exit(0);
  }
  ::waitpid(ended, nullptr, 0);
  std::ofstream(file((".quillpad-" + std::to_string(ended) + "-1").c_str())) << "token";
  std::ofstream(file((".quillpad-" + std::to_string(::getppid()) + "-1").c_str())) << "under way";
  std::ofstream(file(".quillpad-x")) << "of another program";
  EXPECT_FALSE(writeWholeFile(file("file"), "new"));
  EXPECT_EQ(filesInFolder(), 3);
}

TEST_F(WholeFileTest, ReadsRegularFilesUpToTheirBound) {
  std::ofstream(file("ten")) << "0123456789";
  EXPECT_EQ(readWholeFile(file("ten"), 10), "0123456789");
  EXPECT_EQ(readWholeFile(file("ten"), 9).error(), std::errc::file_too_large);
  EXPECT_EQ(readWholeFile(file("absent"), 9).error(), std::errc::no_such_file_or_directory);
  ASSERT_EQ(::mkfifo(file("pipe").c_str(), 0600), 0);
  for (const auto& irregular : {file("pipe"), folder_.path(), std::filesystem::path("/dev/zero")}) {
    EXPECT_EQ(readWholeFile(irregular, 9).error(), std::errc::invalid_argument) << irregular;
  }
}

}  // namespace
}  // namespace quillpad
