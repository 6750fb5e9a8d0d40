#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/foundation/ZipWriter.h"

namespace quillpad {
namespace {

// The whole of a reader's view is tested with another program's reader in tests/page.
TEST(ZipWriter, ChecksumsAndOffsetsAreThoseOfTheFormat) {
  using namespace std::string_literals;
  ZipWriter zip;
  const std::string head = zip.add("b", "123456789").value_or("");
  EXPECT_EQ(head.substr(14, 12), "\x26\x39\xF4\xCB\x09\0\0\0\x09\0\0\0"s);
  EXPECT_EQ(zip.add("ä", "").value_or("").size(), 32U);
  const std::string end = zip.end();
  EXPECT_EQ(end.substr(42, 5), "\0\0\0\0b"s);
  EXPECT_EQ(end.substr(end.size() - 22 - 48, 4), "PK\1\2");
  EXPECT_EQ(end.substr(end.size() - 22 - 6, 6), "\x28\0\0\0ä"s);
  EXPECT_EQ(end.substr(end.size() - 22), "PK\5\6\0\0\0\0\2\0\2\0\x5F\0\0\0\x48\0\0\0\0\0"s);
}

TEST(ZipWriter, TakesAsManyFilesAsTheFormatCounts) {
  ZipWriter zip;
  EXPECT_FALSE(zip.add(std::string(1001, 'n'), ""));
  std::size_t taken = 0;
  while (taken < 70'000 && zip.add("n", "")) {
    ++taken;
  }
  EXPECT_EQ(taken, 65'534U);
}

}  // namespace
}  // namespace quillpad
