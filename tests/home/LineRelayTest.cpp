#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "home/extension/LineRelay.h"
#include "platform/os/FileDescriptor.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

class LineRelayTest : public testing::Test {
 protected:
  LineRelayTest() {
    int ends[2];
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    readEnd_ = FileDescriptor(ends[0]);
    writeEnd_ = FileDescriptor(ends[1]);
    ::fcntl(readEnd_.get(), F_SETFL, O_NONBLOCK);
  }

  // Everything that the relay still has to say.
  std::string read(LineRelay& relay) const {
    std::string text;
    char buffer[65536];
    for (ssize_t count = 1; count > 0; relay.run(1h)) {
      count = ::read(readEnd_.get(), buffer, sizeof buffer);
      text.append(buffer, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return text;
  }

  FileDescriptor readEnd_;
  FileDescriptor writeEnd_;
};

TEST_F(LineRelayTest, PassesLinesOnAtOnce) {
  LineRelay relay(writeEnd_.get());
  relay.add(1h, "one");
  relay.add(1h, "two");
  EXPECT_EQ(relay.descriptor().fd, -1);
  EXPECT_EQ(read(relay), "one\ntwo\n");
}

TEST_F(LineRelayTest, WaitsForNobodyAndSaysHowMuchItDropped) {
  LineRelay relay(writeEnd_.get());
  const std::string line(999, 'x');
  for (Uptime now = 1h; now < 1h + 60s; now += 10ms) {
    relay.add(now, line);
  }
  EXPECT_EQ(relay.descriptor().fd, writeEnd_.get());
  const std::string kept = read(relay);
  EXPECT_LT(kept.size(), 400'000U);
  EXPECT_GT(kept.size(), 200'000U);
  std::string whole;
  while (whole.size() < kept.size()) {
    whole += line + "\n";
  }
  EXPECT_TRUE(kept == whole);
  const auto dropped = std::to_string(6000 - kept.size() / 1000);
  ASSERT_TRUE(relay.nextDeadline());
  relay.run(*relay.nextDeadline());
  EXPECT_EQ(read(relay), "quillpad-home: " + dropped + " lines were dropped, they came too fast\n");
  EXPECT_FALSE(relay.nextDeadline());
}

TEST_F(LineRelayTest, AFloodIsCutEvenWhereItIsRead) {
  LineRelay relay(writeEnd_.get());
  std::string all;
  while (!relay.nextDeadline() && all.size() < 300'000U) {
    relay.add(1h, std::string(999, 'x'));
    all += read(relay);
  }
  EXPECT_LT(all.size(), 300'000U);
  relay.run(1h + 1s);
  EXPECT_EQ(read(relay), "quillpad-home: 1 lines were dropped, they came too fast\n");
}

TEST_F(LineRelayTest, AReaderThatLeftHoldsNothingUp) {
  LineRelay relay(writeEnd_.get());
  readEnd_.close();
  ::signal(SIGPIPE, SIG_IGN);
  relay.add(1h, "unheard");
  EXPECT_EQ(relay.descriptor().fd, -1);
}

}  // namespace
}  // namespace quillpad::home
