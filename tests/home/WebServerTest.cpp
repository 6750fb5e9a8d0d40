// The web server against clients that write their own bytes.
#include <atomic>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "fixtures/Loopback.h"
#include "home/server/WebServer.h"
#include "platform/os/FileDescriptor.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::StartsWith;

// A server whose loop runs on a thread of its own, as long as the test lasts.
class RunningServer {
 public:
  explicit RunningServer(WebServer::Handler handler, WebServer::Limits limits = {}) {
    auto started = WebServer::start(0, limits, std::move(handler));
    EXPECT_TRUE(started) << started.error();
    server_.emplace(std::move(*started));
    port_ = server_->port();
    loop_ = std::thread([this] {
      while (!ending_) {
        pollfd descriptors[] = {{server_->descriptor(), POLLIN, 0}, {changed_.get(), POLLIN, 0}};
        ::poll(descriptors, 2, static_cast<int>(server_->pollTimeout().count()));
        server_->run();
        if (std::uint64_t count = 0; ::read(changed_.get(), &count, sizeof count) > 0) {
          server_->wake();
        }
      }
    });
  }

  ~RunningServer() {
    ending_ = true;
    change();
    loop_.join();
  }

  std::uint16_t port() const { return port_; }
  // The header by which a client names this server.
  std::string own() const { return "Host: 127.0.0.1:" + std::to_string(port_) + "\r\n"; }
  void change() const {
    const std::uint64_t one = 1;
    EXPECT_EQ(::write(changed_.get(), &one, sizeof one), sizeof one);
  }

 private:
  std::optional<WebServer> server_;
  std::uint16_t port_ = 0;
  std::atomic<bool> ending_ = false;
  FileDescriptor changed_{::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)};
  std::thread loop_;
};

// One connection. A read that nothing comes to for ten seconds is a failure.
class Client {
 public:
  explicit Client(const RunningServer& server) : Client(server.port()) {}
  // One that asks.
  Client(const RunningServer& server, const std::string& line) : Client(server) {
    write(line + " HTTP/1.1\r\n" + server.own() + "\r\n");
  }

  explicit Client(std::uint16_t port) : socket_(fixtures::connectedTo(port)) {
    const timeval timeout{10, 0};
    ::setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
  }

  void write(const std::string& bytes) const {
    ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
  }

  // What comes until the text does, or the connection ends.
  std::string readUntil(const std::string& text) {
    while (!received_.contains(text)) {
      char buffer[4096];
      const ssize_t count = ::recv(socket_.get(), buffer, sizeof buffer, 0);
      if (count <= 0) {
        EXPECT_TRUE(count == 0 || errno == ECONNRESET) << "nothing came, and no end";
        break;
      }
      received_.append(buffer, static_cast<std::size_t>(count));
    }
    return std::exchange(received_, {});
  }

  std::string readAll() { return readUntil("there is no such text in any answer"); }

 private:
  FileDescriptor socket_;
  std::string received_;
};

WebReply echo(const WebRequest& request) {
  return WebAnswer{
      .body = request.method + " " + request.path +
              " kind=" + std::string(request.parameter("kind")) + " token=" + request.pageToken};
}

std::string ask(const RunningServer& server, const std::string& start, const std::string& headers) {
  Client client(server);
  client.write(start + " HTTP/1.1\r\n" + headers + "Connection: close\r\n\r\n");
  return client.readAll();
}

TEST(WebServer, HandsRequestsOverDecoded) {
  const RunningServer server(echo);
  const std::string answer = ask(
      server, "POST /place?kind=a%26b%3Cc&kind=second", server.own() + "X-Page-Token: secret\r\n");
  EXPECT_THAT(answer, StartsWith("HTTP/1.1 200 "));
  EXPECT_THAT(answer, HasSubstr("POST /place kind=a&b<c token=secret"));
}

// RequestPolicyTest has the whole table; here that each header gets to the policy.
TEST(WebServer, RefusesWhatItsPolicyRefuses) {
  const RunningServer server(echo);
  const std::string own = server.own();
  const std::string link =
      "Sec-Fetch-Site: cross-site\r\nSec-Fetch-Mode: navigate\r\nSec-Fetch-Dest: document\r\n";
  const std::tuple<std::string, std::string, int> cases[] = {
      {"GET /", own, 200},
      {"GET /", "Host: evil.example\r\n", 421},
      {"POST /", own + "Origin: http://evil.example\r\n", 403},
      {"GET /", own + "Sec-Fetch-Site: cross-site\r\n", 403},
      {"GET /", own + link, 200},
      {"GET /?view=engineer", own + link, 403},
      {"GET /picture.svg", own + link, 403},
      {"DELETE /", own, 405},
      {"POST /", own + "Content-Length: 5\r\n", 413},
      {"POST /", own + "Transfer-Encoding: chunked\r\n", 413},
  };
  for (const auto& [start, headers, status] : cases) {
    const std::string answer = ask(server, start, headers);
    EXPECT_THAT(answer, StartsWith("HTTP/1.1 " + std::to_string(status) + " ")) << headers;
    EXPECT_EQ(answer.contains(" kind="), status == 200) << "the handler is asked";
  }
}

TEST(WebServer, EveryAnswerKeepsThePageToItself) {
  const RunningServer server(echo);
  for (const char* start : {"GET /", "DELETE /"}) {
    const std::string answer = ask(server, start, server.own());
    EXPECT_THAT(answer, HasSubstr("Content-Security-Policy: default-src 'none'"));
    EXPECT_THAT(answer, HasSubstr("X-Content-Type-Options: nosniff"));
    EXPECT_THAT(answer, HasSubstr("Referrer-Policy: no-referrer"));
    EXPECT_THAT(answer, HasSubstr("Cache-Control: no-store"));
  }
}

TEST(WebServer, AnswersLaterWhenThereIsSomethingToSay) {
  std::atomic<bool> ready = false;
  std::atomic<bool> asked = false;
  const RunningServer server([&](const WebRequest&) -> WebReply {
    return LaterAnswer{[&]() -> std::optional<WebAnswer> {
      asked = true;
      return ready ? std::optional(WebAnswer{.body = "at last"}) : std::nullopt;
    }};
  });
  Client client(server, "GET /");
  while (!asked) {
    std::this_thread::yield();
  }
  ready = true;
  server.change();
  EXPECT_THAT(client.readUntil("at last"), HasSubstr("at last"));
}

TEST(WebServer, AnswersLaterWithoutAChangeOnceItTimesOut) {
  for (const auto pause : {0ms, 20ms}) {
    int asked = 0;
    const RunningServer server([&](const WebRequest&) -> WebReply {
      return LaterAnswer{
          .take = [&]() -> std::optional<WebAnswer> {
            return asked++ > 0 ? std::optional(WebAnswer{.body = "enough"}) : std::nullopt;
          },
          .timeout = pause};
    });
    EXPECT_THAT(ask(server, "GET /", server.own()), HasSubstr("enough"));
  }
}

TEST(WebServer, BoundsTheAnswersThatAreStillToCome) {
  std::atomic<int> asked = 0;
  std::vector<std::unique_ptr<Client>> clients;
  {
    const RunningServer server(
        [&](const WebRequest&) -> WebReply {
          ++asked;
          return LaterAnswer{[]() -> std::optional<WebAnswer> { return std::nullopt; }};
        },
        {.laterAnswers = 2});
    for (int count = 1; count <= 3; ++count) {
      clients.push_back(std::make_unique<Client>(server, "GET /"));
      while (asked < count) {
        std::this_thread::yield();
      }
    }
    EXPECT_THAT(clients.back()->readUntil("busy"), HasSubstr("503"));
  }
  clients.pop_back();
  for (const auto& client : clients) {
    EXPECT_THAT(client->readAll(), HasSubstr("The home screen is stopping."));
  }
}

WebReply silentStream(const WebRequest&) {
  return EventStream{[]() -> std::shared_ptr<const std::string> { return nullptr; }};
}

TEST(WebServer, WhatIsMadeForAClientThatLeftIsLetGo) {
  const auto held = std::make_shared<char>();
  const RunningServer server([&](const WebRequest& request) -> WebReply {
    if (request.path == "/later") {
      return LaterAnswer{[held]() -> std::optional<WebAnswer> { return std::nullopt; }};
    }
    return FileStream{
        .contentType = "text/plain",
        .nextPiece = [held]() -> std::optional<std::string> { return std::nullopt; }};
  });
  for (const char* path : {"/later", "/file"}) {
    const auto before = held.use_count();
    const auto waitUntil = [&](bool isHeld) {
      for (int turn = 0; turn < 1000 && (held.use_count() > before) != isHeld; ++turn) {
        server.change();
        std::this_thread::sleep_for(10ms);
      }
      EXPECT_EQ(held.use_count() > before, isHeld) << path;
    };
    std::optional<Client> client;
    client.emplace(server, std::string("GET ") + path);
    waitUntil(true);
    client.reset();
    waitUntil(false);
  }
}

TEST(WebServer, ASilentStreamHasItsHeartbeats) {
  const RunningServer server(silentStream, {.heartbeat = 20ms});
  Client client(server, "GET /events");
  EXPECT_THAT(client.readUntil(":\n\n"), HasSubstr("text/event-stream"));
  client.readUntil(":\n\n");
  client.readUntil(":\n\n");
}

TEST(WebServer, BoundsTheStreams) {
  const RunningServer server(silentStream, {.streams = 2, .heartbeat = 20ms});
  std::vector<std::unique_ptr<Client>> clients;
  for (int count = 0; count < 2; ++count) {
    clients.push_back(std::make_unique<Client>(server, "GET /events"));
    clients.back()->readUntil(":\n\n");
  }
  EXPECT_THAT(ask(server, "GET /events", server.own()), HasSubstr("503"));
  clients.pop_back();
  std::string answer;
  while (answer.empty() || answer.contains(" 503 ")) {  // until the server has noticed
    answer = Client(server, "GET /events").readUntil("\r\n\r\n");
  }
  EXPECT_THAT(answer, StartsWith("HTTP/1.1 200 "));
}

TEST(WebServer, AllowsItselfADescriptorForEveryConnection) {
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit few{256, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
  const RunningServer server(echo);
  rlimit after{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &after), 0);
  EXPECT_GE(after.rlim_cur, std::min<rlim_t>(before.rlim_max, 2048));
  ::setrlimit(RLIMIT_NOFILE, &before);
}

// In a process of its own, which has few.
TEST(WebServer, LeavesDescriptorsToItsProgramHoweverManyConnect) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const rlimit few{100, 100};
    ::setrlimit(RLIMIT_NOFILE, &few);
    const RunningServer server([](const WebRequest&) -> WebReply {
      std::vector<FileDescriptor> own;
      while (own.size() < 20 && (own.empty() || own.back())) {
        own.emplace_back(::open("/dev/null", O_RDONLY | O_CLOEXEC));
      }
      return WebAnswer{.body = own.back() ? "there are enough" : "there are too few"};
    });
    const std::uint16_t port = server.port();
    static_cast<void>(::write(ends[1], &port, sizeof port));
    ::pause();
  }
  ::close(ends[1]);
  std::uint16_t port = 0;
  ASSERT_EQ(::read(ends[0], &port, sizeof port), ssize_t{sizeof port});
  ::close(ends[0]);
  std::vector<std::unique_ptr<Client>> idle;
  for (int i = 0; i < 150; ++i) {
    idle.push_back(std::make_unique<Client>(port));
  }
  Client client(port);
  client.write(
      "GET / HTTP/1.1\r\nConnection: close\r\nHost: 127.0.0.1:" + std::to_string(port) +
      "\r\n\r\n");
  EXPECT_THAT(client.readAll(), HasSubstr("there are enough"));
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
}

TEST(WebServer, StreamsToEveryListenerAndEndsThemCleanly) {
  std::atomic<int> event = 0;
  std::vector<std::unique_ptr<Client>> clients;
  {
    const RunningServer server(
        [&](const WebRequest&) -> WebReply {
          return EventStream{[&, seen = 0]() mutable -> std::shared_ptr<const std::string> {
            if (seen == event) {
              return nullptr;
            }
            seen = event;
            return std::make_shared<const std::string>(
                "data: " + std::to_string(seen) + std::string(100'000, '.') + "\n\n");
          }};
        },
        {.heartbeat = 20ms});
    for (int count = 0; count < 50; ++count) {
      clients.push_back(std::make_unique<Client>(server, "GET /events"));
    }
    for (const auto& client : clients) {
      client->readUntil(":\n\n");  // the heartbeat: the stream is open
    }
    for (int round = 1; round <= 3; ++round) {
      event = round;
      server.change();
      for (const auto& client : clients) {
        const std::string data = "data: " + std::to_string(round);
        EXPECT_THAT(client->readUntil(data), HasSubstr(data));
      }
    }
  }
  for (const auto& client : clients) {
    EXPECT_TRUE(client->readAll().ends_with("\r\n0\r\n\r\n")) << "the last, empty chunk";
  }
}

TEST(WebServer, HangsUpOnWhoGetsNoRequestAcross) {
  const RunningServer server(echo, {.requestTime = 50ms});
  Client silent(server);
  Client dribbling(server);
  dribbling.write("GET / HTTP/1.1\r\nX-Never: end");
  EXPECT_EQ(silent.readAll(), "");
  EXPECT_EQ(dribbling.readAll(), "");
  EXPECT_THAT(Client(server, "GET /").readAll(), HasSubstr("GET / kind="));
}

TEST(WebServer, MakesRoomByHangingUpOnTheOldest) {
  const RunningServer server(echo, {.otherConnections = 8, .requestTime = 1h});
  std::vector<std::unique_ptr<Client>> silent;
  silent.reserve(20);
  for (int count = 0; count < 20; ++count) {
    silent.push_back(std::make_unique<Client>(server));
  }
  EXPECT_THAT(ask(server, "GET /", server.own()), HasSubstr("200"));
  EXPECT_EQ(silent.front()->readAll(), "");
}

TEST(WebServer, TellsThatThePortIsTaken) {
  const RunningServer first(echo);
  const auto second = WebServer::start(first.port(), {}, echo);
  ASSERT_FALSE(second);
  EXPECT_EQ(
      second.error(),
      "cannot listen on port " + std::to_string(first.port()) +
          ": another program uses it; choose another one with --port");
}

}  // namespace
}  // namespace quillpad::home
