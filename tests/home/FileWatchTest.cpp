#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>

#include "fixtures/TemporaryHome.h"
#include "home/extension/FileWatch.h"

namespace quillpad::home {
namespace {

TEST(FileWatch, SeesWhateverChangesOnTheWayToTheFile) {
  namespace fs = std::filesystem;
  const fixtures::TemporaryFolder folder;
  const fs::path top = folder.path();
  const auto link = [&](const fs::path& to, const char* name) {
    fs::remove(top / name);
    fs::create_symlink(to, top / name);
  };
  const auto write = [&](const char* name) { std::ofstream(top / name) << "text"; };
  FileWatch watch(top / "current" / "group" / "store");
  const std::tuple<const char*, bool, std::function<void()>> steps[] = {
      {"nothing", false, [] {}},
      {"its folders", true, [&] { fs::create_directories(top / "one" / "group"); }},
      {"a link to them", true, [&] { link("one", "current"); }},
      {"the file", true, [&] { write("one/group/store"); }},
      {"what is in it", true, [&] { write("one/group/store"); }},
      {"another folder", true, [&] { fs::create_directories(top / "two" / "group"); }},
      {"a file in that", false, [&] { write("two/group/store"); }},
      {"the link", true, [&] { link(top / "two", "current"); }},
      {"where it led to", false, [&] { write("one/group/store"); }},
      {"where it leads to", true, [&] { write("two/group/store"); }},
      {"a link of the file", true, [&] { link("../../three/a", "two/group/store"); }},
      {"its folder", true, [&] { fs::create_directory(top / "three"); }},
      {"a link in a chain", true, [&] { link("b", "three/a"); }},
      {"its end", true, [&] { write("three/b"); }},
      {"links without an end", true, [&] { link("a", "three/b"); }},
      {"their end", true, [&] { write("three/c"), link("c", "three/b"); }},
      {"all gone", true, [&] { fs::remove_all(top / "two"); }},
      {"all there again", true, [&] { fs::create_directories(top / "two" / "group"); }},
      {"the file again", true, [&] { write("two/group/store"); }},
  };
  for (const auto& [what, isSeen, step] : steps) {
    step();
    EXPECT_EQ(watch.takeChange(), isSeen) << what;
    watch.takeChange();  // the kernel tells of watches that ended
  }
  EXPECT_EQ(FileWatch("").descriptor(), -1);
}

}  // namespace
}  // namespace quillpad::home
