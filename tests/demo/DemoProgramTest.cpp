// The program quillpad-demo-gateway, started as a person starts it and asked over HTTPS.

#include <csignal>
#include <fstream>
#include <future>
#include <gmock/gmock.h>
#include <optional>
#include <unistd.h>

#include "fixtures/Loopback.h"
#include "fixtures/Program.h"
#include "fixtures/ScopedVariable.h"
#include "fixtures/TemporaryHome.h"
#include "platform/foundation/Fatal.h"
#include "platform/foundation/Json.h"
#include "platform/net/URLSession.h"

namespace quillpad {

namespace {
using fixtures::contentsOf;
using fixtures::ScopedVariable;
using fixtures::TemporaryHome;
using testing::HasSubstr;
using testing::Not;

// The running program.
class Gateway : public fixtures::Program {
 public:
  explicit Gateway(std::vector<std::string> arguments)
      : Program(QUILLPAD_DEMO_GATEWAY, std::move(arguments)) {}

  // "https://localhost:<port>" once it serves.
  std::string origin() const {
    for (int tries = 0; tries < 500; ++tries) {
      const std::string text = out();
      const std::size_t begin = text.find("https://");
      if (begin != text.npos && text.find('\n') != text.npos) {
        return text.substr(begin, text.find(' ', begin) - begin);
      }
      usleep(20000);
    }
    ADD_FAILURE() << "it does not serve: " << out() << err();
    return "https://localhost:1";
  }
};

struct Result {
  std::optional<std::string> data;
  int status = 0;
  int error = 0;
};

Result fetch(
    const std::string& address,
    const std::string& token,
    const std::string& body,
    const std::string& webPage = "") {
  URLRequest request(URL::parse(address).value());
  request.httpMethod = body.empty() ? "GET" : "POST";
  request.httpBody = body;
  request.setValue("application/json", "Content-type");
  request.setValue(token, "Authorization");
  if (!webPage.empty()) {
    request.setValue(webPage, "Origin");
  }
  std::promise<Result> result;
  URLSession::shared()
      .dataTask(
          std::move(request),
          [&](auto data, auto response, auto error) {
            result.set_value(
                {std::move(data), response ? response->statusCode : 0, error ? error->code : 0});
          })
      .resume();
  return result.get_future().get();
}

constexpr const char* summary = R"({"businessId":"demo","currentTime":"2026-03-07 10:00:00"})";

class DemoProgramTest : public testing::Test {
 protected:
  std::filesystem::path state() const {
    return home_.path() / ".local/state/quillpad/demo-gateway";
  }

  // Its address and its token, as the file tells them.
  std::pair<std::string, std::string> switchboard() const {
    const auto told = readJson(contentsOf(state() / "switchboard.json"), JsonFragments::refused);
    const Dictionary members = forcedAs<Dictionary>(told.value_or(Value()), "the switchboard");
    return {
        forcedMember<std::string>(members, "address"), forcedMember<std::string>(members, "token")};
  }

  TemporaryHome home_;
  ScopedVariable trust_{"SSL_CERT_FILE", (state() / "certificate.pem").string()};
};

unsigned modeOf(const std::filesystem::path& file) {
  return static_cast<unsigned>(std::filesystem::status(file).permissions());
}

TEST_F(DemoProgramTest, ServesWithAnIdentityThatItKeeps) {
  std::string token;
  std::string certificate;
  for (const int start : {1, 2}) {
    Gateway program({"--port", "0"});
    const std::string origin = program.origin();
    token = start == 1 ? contentsOf(state() / "token") : token;
    certificate = start == 1 ? contentsOf(state() / "certificate.pem") : certificate;
    const std::string path = "/invoice/invoice/getDataMap";
    EXPECT_EQ(fetch(origin + path, token, summary).status, 200);
    EXPECT_EQ(fetch(origin + path, "wrong", summary).status, 401);
    const std::string numeric = "https://127.0.0.1" + origin.substr(origin.rfind(':'));
    EXPECT_EQ(fetch(numeric + path, token, summary).status, 200);

    EXPECT_THAT(program.out(), HasSubstr((state() / "certificate.pem").string()));
    EXPECT_THAT(program.out(), HasSubstr((state() / "token").string()));
    EXPECT_THAT(program.out(), HasSubstr("POST /invoice/invoice/getDataMap 401"));
    EXPECT_THAT(program.out() + program.err(), Not(HasSubstr(token)));
    EXPECT_EQ(program.stop(start == 1 ? SIGTERM : SIGINT).status, 0);
  }
  EXPECT_GE(token.size(), 32U);
  EXPECT_EQ(contentsOf(state() / "token"), token);
  EXPECT_EQ(contentsOf(state() / "certificate.pem"), certificate);
  EXPECT_EQ(modeOf(state()), 0700U);
  EXPECT_EQ(modeOf(state() / "token"), 0600U);
  EXPECT_EQ(modeOf(state() / "key.pem"), 0600U);
}

TEST_F(DemoProgramTest, MakesAnotherCertificateWhereTheKeptOneIsOfNoUse) {
  {
    Gateway({"--port", "0"}).origin();
  }
  const std::string before = contentsOf(state() / "certificate.pem");
  std::ofstream(state() / "key.pem") << "half a key";
  const Gateway program({"--port", "0"});
  const std::string origin = program.origin();
  EXPECT_NE(contentsOf(state() / "certificate.pem"), before);
  EXPECT_EQ(fetch(origin + "/", "", "").status, 404);
}

TEST_F(DemoProgramTest, ShowsFaultsWhileItRuns) {
  const Gateway program({"--port", "0", "--fault", "status=503"});
  const std::string origin = program.origin();
  const std::string token = contentsOf(state() / "token");
  const auto ask = [&] { return fetch(origin + "/invoice/invoice/getDataMap", token, summary); };
  const auto [address, ownToken] = switchboard();
  EXPECT_EQ(address, origin + "/demo/switchboard");
  const auto order = [&](const std::string& fault) {
    return fetch(address, ownToken, fault).status;
  };
  EXPECT_EQ(ask().status, 503);
  EXPECT_EQ(order("drop"), 200);
  EXPECT_EQ(ask().error, -1005);
  EXPECT_EQ(order("truncate"), 200);
  EXPECT_EQ(ask().error, -1005);
  EXPECT_EQ(order("not-json"), 200);
  EXPECT_THAT(ask().data.value_or(""), HasSubstr("<h1>"));
  EXPECT_EQ(order("nonsense"), 400);
  EXPECT_EQ(fetch(address, token, "drop").status, 403);
  EXPECT_EQ(fetch(address, ownToken, "drop", "https://page.test").status, 403);
  EXPECT_EQ(fetch(address, ownToken, std::string(1 << 20, 'x')).status, 413);
  EXPECT_EQ(modeOf(state() / "switchboard.json"), 0600U);
  EXPECT_THAT(program.out() + program.err(), Not(HasSubstr(ownToken)));
  EXPECT_EQ(order("off"), 200);
  EXPECT_EQ(ask().status, 200);
  EXPECT_EQ(fetch(origin + "/demo/documents", "wrong", "").status, 401);
  EXPECT_EQ(fetch(origin + "/demo/documents", token, "", "https://page.test").status, 403);
  EXPECT_THAT(
      fetch(origin + "/demo/documents", token, "").data.value_or(""), HasSubstr("clientName"));
}

TEST_F(DemoProgramTest, EndsAtOnceWhileAnswersWait) {
  Gateway program({"--port", "0", "--fault", "delay=600000"});
  const std::string origin = program.origin();
  auto waiting = std::async(std::launch::async, [&] {
    return fetch(origin + "/invoice/invoice/getDataMap", contentsOf(state() / "token"), summary);
  });
  EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
  EXPECT_EQ(program.stop(SIGTERM).status, 0);
  EXPECT_NE(waiting.get().error, 0);
}

TEST_F(DemoProgramTest, AnswersWhileManyConnectionsAreIdle) {
  const Gateway program({"--port", "0"});
  const std::string origin = program.origin();
  const int port = std::stoi(origin.substr(origin.rfind(':') + 1));
  std::vector<FileDescriptor> idle;
  for (int i = 0; i < 200; ++i) {
    idle.push_back(fixtures::connectedTo(port));
  }
  EXPECT_EQ(fetch("https://127.0.0.1" + origin.substr(origin.rfind(':')), "", "").status, 404);
}

TEST_F(DemoProgramTest, EndsWithOneLineWhereItDoesNotServe) {
  const Gateway first({"--port", "0"});
  const std::string origin = first.origin();
  const std::tuple<std::vector<std::string>, int, const char*> cases[] = {
      {{"--port", origin.substr(origin.rfind(':') + 1)}, 1, "choose another with --port"},
      {{"--state", "/proc/nothing"}, 1, "choose another --state"},
      {{"--port", "65536"}, 2, "65535"},
      {{"--port"}, 2, "--port"},
      {{"--fault", "slow"}, 2, "'slow' is no fault"},
      {{"now"}, 2, "now"},
      {{"--version"}, 0, "quillpad-demo-gateway 1."},
      {{"--help"}, 0, "shape=figure-text"},
  };
  for (const auto& [arguments, status, line] : cases) {
    const fixtures::Outcome outcome = Gateway(arguments).wait();
    EXPECT_EQ(outcome.status, status) << line;
    EXPECT_THAT(outcome.out + outcome.err, HasSubstr(line));
  }
}

}  // namespace

}  // namespace quillpad
