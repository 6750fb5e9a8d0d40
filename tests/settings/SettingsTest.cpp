#include <fcntl.h>
#include <fstream>
#include <future>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fixtures/ScopedVariable.h"
#include "fixtures/TemporaryHome.h"
#include "platform/os/FileDescriptor.h"
#include "platform/os/UserFolders.h"
#include "platform/os/WholeFile.h"
#include "platform/settings/SettingsWriter.h"
#include "platform/settings/UserDefaults.h"

namespace quillpad {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr std::string_view suite = "group.test";

std::string storeOf(std::string_view dictionary) {
  return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">)" +
         std::string(dictionary) + "</plist>";
}

std::optional<Value> stored(std::string_view key) {
  const auto defaults = UserDefaults::open(suite);
  return defaults ? defaults->object(key) : std::nullopt;
}

std::expected<void, std::string> set(const std::string& key, const Value& value) {
  return changeSettings(suite, [&](Dictionary& objects) { objects.set(key, value); });
}

mode_t modeOf(const std::filesystem::path& file) {
  return static_cast<mode_t>(std::filesystem::status(file).permissions());
}

class SettingsTest : public testing::Test {
 protected:
  void put(std::string_view bytes) {
    std::filesystem::create_directories(file_.parent_path());
    std::ofstream(file_, std::ios::binary | std::ios::trunc) << bytes;
  }

  fixtures::TemporaryHome home_;
  const std::filesystem::path file_ = UserDefaults::path(suite);
};

TEST_F(SettingsTest, LieBelowTheDataFolder) {
  const fixtures::ScopedVariable home("HOME", "/home/ada");
  const std::string tail = "/quillpad/group.test/Library/Preferences/group.test.plist";
  const auto pathWith = [](const std::optional<std::string>& dataFolder) {
    const fixtures::ScopedVariable data("XDG_DATA_HOME", dataFolder);
    return UserDefaults::path(suite).string();
  };
  EXPECT_EQ(pathWith(std::nullopt), "/home/ada/.local/share" + tail);
  EXPECT_EQ(pathWith(""), "/home/ada/.local/share" + tail);
  EXPECT_EQ(pathWith("relative"), "/home/ada/.local/share" + tail);
  EXPECT_EQ(pathWith("/data"), "/data" + tail);
}

TEST_F(SettingsTest, CannotBeOpenedWhenDamaged) {
  for (const std::string& bytes :
       {std::string(),
        storeOf("<array/>"),
        storeOf("<dict><key>a</key><string>b"),
        std::string(R"({"token":"abc"})"),
        storeOf("<dict/><!--" + std::string(std::size_t{1} << 20, 'x') + "-->")}) {
    put(bytes);
    EXPECT_FALSE(UserDefaults::open(suite)) << bytes.substr(0, 80);
  }
}

TEST_F(SettingsTest, CannotBeOpenedWhenThereIsNoFileToRead) {
  EXPECT_FALSE(UserDefaults::open(suite));
  std::filesystem::create_directories(file_);
  EXPECT_FALSE(UserDefaults::open(suite));
  std::filesystem::remove(file_);
  ASSERT_EQ(mkfifo(file_.c_str(), 0600), 0);
  EXPECT_FALSE(UserDefaults::open(suite));
  std::filesystem::remove(file_);
  std::filesystem::create_symlink("/dev/zero", file_);
  EXPECT_FALSE(UserDefaults::open(suite));
  std::filesystem::remove(file_);

  put(storeOf("<dict/>"));
  std::filesystem::permissions(file_, std::filesystem::perms::none);
  // The superuser reads it nevertheless.
  EXPECT_EQ(UserDefaults::open(suite).has_value(), geteuid() == 0);

  const fixtures::ScopedVariable home("HOME", std::nullopt);
  const fixtures::ScopedVariable data("XDG_DATA_HOME", std::nullopt);
  EXPECT_FALSE(UserDefaults::open(suite));
}

TEST_F(SettingsTest, AreMadeForTheirOwnerAlone) {
  ASSERT_TRUE(set("token", "abc"));
  EXPECT_EQ(stored("token"), Value("abc"));
  EXPECT_EQ(modeOf(file_), 0600U);
  EXPECT_EQ(modeOf(file_.parent_path()), 0700U);
  EXPECT_EQ(modeOf(file_.parent_path().parent_path().parent_path()), 0700U);
}

TEST_F(SettingsTest, KeepEntriesThatAChangeLeavesAlone) {
  put(
      storeOf("<dict><key>other</key><array><date>2026-03-07T09:05:03Z</date><real>0.1</real>"
              "</array><key>token</key><string>old</string></dict>"));
  const Value other = Array{Date(std::chrono::seconds(1'772'874'303)), 0.1};
  EXPECT_EQ(stored("token"), Value("old"));
  ASSERT_TRUE(set("token", "new"));
  EXPECT_EQ(stored("token"), Value("new"));
  EXPECT_EQ(stored("other"), other);
  ASSERT_TRUE(changeSettings(suite, [](Dictionary& objects) { objects.remove("token"); }));
  EXPECT_EQ(stored("token"), std::nullopt);
  EXPECT_EQ(stored("other"), other);
}

TEST_F(SettingsTest, AreLeftAloneWhenTheyCannotBeChanged) {
  const std::tuple<std::string, Value, const char*> cases[] = {
      {"not a store", "new", "not a property list"},
      {storeOf("<array/>"), "new", "not a property list"},
      {storeOf("<dict/>") + std::string(std::size_t{1} << 20, ' '), "new", "larger than 1 MiB"},
      {storeOf("<dict/>"), "secret\x1B", "control character"},
      {storeOf("<dict/>"), "secret\xFF", "UTF-8"},
      {storeOf("<dict/>"), std::string(std::size_t{1} << 20, 's'), "larger than 1 MiB"},
  };
  for (const auto& [bytes, token, why] : cases) {
    put(bytes);
    const auto changed = set("token", token);
    ASSERT_FALSE(changed) << why;
    EXPECT_THAT(changed.error(), HasSubstr(why));
    EXPECT_THAT(changed.error(), HasSubstr(file_.string()));
    EXPECT_THAT(changed.error(), Not(HasSubstr("secret")));
    EXPECT_EQ(readWholeFile(file_, 2 << 20), bytes);
  }
}

TEST_F(SettingsTest, LoseNothingToManyWritersAtOnce) {
  constexpr int changes = 25;
  const auto write = [](const std::string& writer) {
    for (int i = 0; i < changes; ++i) {
      if (!set(writer + std::to_string(i), i)) {
        return false;
      }
    }
    return true;
  };
  ASSERT_TRUE(set("a", 0));
  std::vector<pid_t> processes;
  for (const char* name : {"a", "b"}) {
    const pid_t process = fork();
    if (process == 0) {
      _exit(write(name) ? 0 : 1);
    }
    processes.push_back(process);
  }
  auto one = std::async(std::launch::async, write, "c");
  auto two = std::async(std::launch::async, write, "d");
  while (two.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
    EXPECT_EQ(stored("a"), Value(0)) << "a reader meanwhile finds all that was written";
  }
  EXPECT_TRUE(one.get() && two.get());
  for (const pid_t process : processes) {
    int status = 0;
    ASSERT_EQ(waitpid(process, &status, 0), process);
    EXPECT_EQ(status, 0);
  }
  for (const char* name : {"a", "b", "c", "d"}) {
    for (int i = 0; i < changes; ++i) {
      EXPECT_EQ(stored(name + std::to_string(i)), Value(i)) << name << i;
    }
  }
}

// An extension can read all of the data folder, and so lock whatever lies there.
TEST_F(SettingsTest, AreNotHeldUpByAReaderWithLocks) {
  ASSERT_TRUE(set("token", "abc"));
  std::vector<FileDescriptor> held;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(*userDataFolder())) {
    held.emplace_back(open(entry.path().c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(flock(held.back().get(), LOCK_EX | LOCK_NB), 0) << entry.path();
  }
  auto signOut = std::async(std::launch::async, [] { return set("token", "").has_value(); });
  EXPECT_EQ(signOut.wait_for(std::chrono::seconds(10)), std::future_status::ready);
  held.clear();
  EXPECT_TRUE(signOut.get());
}

}  // namespace
}  // namespace quillpad
