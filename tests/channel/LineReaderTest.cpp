#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "platform/channel/LineReader.h"

namespace quillpad {

namespace {

constexpr std::string_view tooLong = "(too long)";

// Everything that the reader gives for the pieces, with a cap of four bytes.
std::vector<std::string> linesOf(const std::vector<std::string_view>& pieces) {
  channel::LineReader reader(4);
  std::vector<std::string> lines;
  for (const std::string_view piece : pieces) {
    reader.append(piece);
    while (const auto line = reader.next()) {
      lines.emplace_back(line->tooLong ? std::string(tooLong) : line->text);
    }
  }
  lines.push_back("rest:" + reader.takeRest());
  return lines;
}

TEST(LineReader, CutsTheStreamWhereverItsPiecesEnd) {
  const std::pair<std::vector<std::string_view>, std::vector<std::string>> cases[] = {
      {{}, {"rest:"}},
      {{"ab\ncd\n"}, {"ab", "cd", "rest:"}},
      {{"a", "b", "\n", "c"}, {"ab", "rest:c"}},
      {{"\n\n"}, {"", "", "rest:"}},
      {{"abcd\n"}, {"abcd", "rest:"}},
      {{"abcde\nx\n"}, {"(too long)", "x", "rest:"}},
      {{"abc", "fgh", "ijklmnop", "\nx\n"}, {"(too long)", "x", "rest:"}},
      {{"abcde", "\n", "abcde", "\n", "x\n"}, {"(too long)", "(too long)", "x", "rest:"}},
      {{"abcde", "f"}, {"(too long)", "rest:"}},
  };
  for (const auto& [pieces, lines] : cases) {
    EXPECT_EQ(linesOf(pieces), lines);
  }
}

}  // namespace

}  // namespace quillpad
