#include "system/HomeScreen.h"

#include <iterator>
#include <sstream>

namespace quillpad {

// Until one is served, the gateway is where nobody listens: at the usual port a demo may.
HomeScreenTest::HomeScreenTest() { origin_.emplace("TEST_GATEWAY_ORIGIN", "https://localhost:9"); }

std::unique_ptr<fixtures::Program> HomeScreenTest::start(
    std::vector<std::string> arguments, const std::string& input) const {
  arguments.insert(arguments.begin(), {"--extension", EXTENSION_PROGRAM});
  return std::make_unique<fixtures::Program>(HOME_PROGRAM, std::move(arguments), input);
}

Outcome HomeScreenTest::run(std::vector<std::string> arguments, const std::string& input) const {
  return start(std::move(arguments), input)->wait();
}

Outcome HomeScreenTest::runLine(const std::string& line) const {
  std::istringstream words(line);
  return run({std::istream_iterator<std::string>(words), {}});
}

Outcome HomeScreenTest::runThrough(
    const std::vector<std::string>& runner, const std::vector<std::string>& arguments) {
  std::vector<std::string> words(runner.begin() + 1, runner.end());
  words.insert(words.end(), {HOME_PROGRAM, "--extension", EXTENSION_PROGRAM});
  words.insert(words.end(), arguments.begin(), arguments.end());
  return fixtures::Program(runner.front(), std::move(words)).wait();
}

void HomeScreenTest::signIn() const {
  const Outcome signedIn =
      run({"settings", "sign-in", "--business-id", "b-7", "--token-file", "-"},
          std::string(token) + "\n");
  ASSERT_EQ(signedIn.status, 0) << signedIn.err;
}

fixtures::HttpsServer& HomeScreenTest::serve(fixtures::HttpsServer::Handler handler) {
  gateway_ = std::make_unique<fixtures::HttpsServer>(std::move(handler));
  origin_.reset();
  origin_.emplace("TEST_GATEWAY_ORIGIN", gateway_->address(""));
  return *gateway_;
}

fixtures::HttpsServer& HomeScreenTest::serveBody(const std::string& body) {
  return serve([body](const auto& /*request*/, fixtures::HttpsServer::Exchange& exchange) {
    exchange.respond(200, body);
  });
}

}  // namespace quillpad
