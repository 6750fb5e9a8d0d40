#include <array>
#include <deque>
#include <gtest/gtest.h>

#include "home/server/StreamReader.h"

namespace quillpad::home {
namespace {

TEST(StreamReader, SendsEveryEventToItsEndAndAHeartbeatInSilence) {
  std::deque<std::string> events{"data: one\n\n", "data: two\n\n"};
  StreamReader reader([&]() -> std::shared_ptr<const std::string> {
    if (events.empty()) {
      return nullptr;
    }
    auto event = std::make_shared<const std::string>(events.front());
    events.pop_front();
    return event;
  });
  const auto next = [&](std::size_t size) {
    std::array<char, 64> buffer{};
    return std::string(buffer.data(), reader.read(buffer.data(), size));
  };
  EXPECT_TRUE(reader.hasMore());
  EXPECT_EQ(next(8), "data: on");
  reader.requestHeartbeat();
  EXPECT_EQ(next(8), "e\n\n") << "events do not share a piece, and no heartbeat comes within one";
  EXPECT_EQ(next(64), "data: two\n\n");
  EXPECT_TRUE(reader.hasMore());
  EXPECT_EQ(next(64), ":\n\n");
  EXPECT_FALSE(reader.hasMore());
  EXPECT_EQ(next(64), "");
}

TEST(FileReader, SendsPiecesAndWaitsAndEnds) {
  std::deque<std::optional<std::string>> pieces{"one", std::nullopt, "two", ""};
  FileReader reader([&] {
    auto piece = pieces.front();
    pieces.pop_front();
    return piece;
  });
  std::array<char, 2> buffer{};
  std::string sent;
  int waits = 0;
  while (const auto count = reader.read(buffer.data(), buffer.size())) {
    sent.append(buffer.data(), *count);
    waits += *count == 0 ? 1 : 0;
  }
  EXPECT_EQ(sent, "onetwo");
  EXPECT_EQ(waits, 1);
  EXPECT_TRUE(reader.hasMore()) << "the end is to be told";
  EXPECT_FALSE(reader.read(buffer.data(), buffer.size()));
}

}  // namespace
}  // namespace quillpad::home
