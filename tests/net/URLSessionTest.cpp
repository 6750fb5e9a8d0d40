#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <future>
#include <gmock/gmock.h>
#include <mutex>
#include <set>
#include <sstream>
#include <thread>
#include <unistd.h>

#include "fixtures/HttpsServer.h"
#include "fixtures/Loopback.h"
#include "fixtures/Program.h"
#include "fixtures/ScopedVariable.h"
#include "fixtures/TemporaryHome.h"
#include "platform/foundation/Activity.h"
#include "platform/net/URLSession.h"

namespace quillpad {
namespace {

using fixtures::HttpsServer;
using fixtures::ScopedVariable;
using testing::ElementsAre;
using namespace std::chrono_literals;

URLRequest requestFor(const std::string& address) {
  return URLRequest(URL::parse(address).value());
}

URLRequest postFor(const std::string& address, std::string body) {
  URLRequest request = requestFor(address);
  request.httpMethod = "POST";
  request.httpBody = std::move(body);
  request.setValue("application/json", "Content-type");
  request.setValue("secret", "Authorization");
  return request;
}

struct Result {
  std::optional<std::string> data;
  std::optional<URLResponse> response;
  std::optional<TransportError> error;

  int status() const { return response ? response->statusCode : 0; }
  int errorCode() const { return error ? error->code : 0; }
};

// Gathers the results of tasks in the order in which they are delivered.
class Results {
 public:
  URLSession::Completion completion() {
    return [this](auto data, auto response, auto error) {
      const std::lock_guard lock(mutex_);
      results_.push_back({std::move(data), response, std::move(error)});
      threads_.insert(std::this_thread::get_id());
      changed_.notify_all();
    };
  }

  std::vector<Result> wait(std::size_t count) {
    std::unique_lock lock(mutex_);
    EXPECT_TRUE(changed_.wait_for(lock, 30s, [&] { return results_.size() >= count; }))
        << results_.size() << " of " << count << " results came";
    return results_;
  }

  std::set<std::thread::id> threads() {
    const std::lock_guard lock(mutex_);
    return threads_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Result> results_;
  std::set<std::thread::id> threads_;
};

void start(URLRequest request, URLSession::Completion completion) {
  URLSession::shared().dataTask(std::move(request), std::move(completion)).resume();
}

Result fetch(URLRequest request) {
  Results results;
  start(std::move(request), results.completion());
  std::vector<Result> all = results.wait(1);
  return all.empty() ? Result{} : std::move(all.front());
}

Result fetch(const std::string& address) { return fetch(requestFor(address)); }

class URLSessionTest : public testing::Test {
 protected:
  void TearDown() override {
    URLSession::shared().setTimeouts({});
    URLSession::shared().watchTransfers({});
  }

  ScopedVariable trust_{"SSL_CERT_FILE", HttpsServer::authorityFile()};
  ScopedVariable folder_{"SSL_CERT_DIR", std::nullopt};
};

TEST_F(URLSessionTest, PostsTheBodyAndItsFields) {
  const HttpsServer server([](auto&, auto& exchange) { exchange.respond(200, "fine"); });
  const std::string body("{\"businessId\":\0\"7\"}", 19);
  URLRequest request = postFor(server.address("/invoice?page=1"), body);
  request.setValue("4000", "content-length");
  request.setValue("evil\nInjected: yes", "X-Note");
  request.setValue("evil\rInjected: yes", "X-Other-Note");
  request.setValue(" \t", "X-Empty");
  request.setValue("\r\n kept\t\r\n", "X-Blanks");

  const Result result = fetch(std::move(request));

  EXPECT_EQ(result.data, "fine");
  EXPECT_EQ(result.status(), 200);
  const HttpsServer::Request got = server.requests().at(0);
  EXPECT_EQ(got.method, "POST");
  EXPECT_EQ(got.path, "/invoice?page=1");
  EXPECT_EQ(got.body, body);
  EXPECT_EQ(got.header("Authorization"), "secret");
  EXPECT_EQ(got.header("Content-Type"), "application/json");
  EXPECT_EQ(got.headerCount("Content-Length"), 1);
  EXPECT_EQ(got.header("Content-Length"), "19");
  EXPECT_EQ(got.header("X-Empty"), "");
  EXPECT_EQ(got.header("X-Blanks"), "kept");
  EXPECT_EQ(got.headerCount("X-Note") + got.headerCount("X-Other-Note"), 0);
  EXPECT_EQ(got.headerCount("Injected"), 0);
  EXPECT_EQ(got.headerCount("Cookie"), 0);
}

TEST_F(URLSessionTest, FieldsOfTheSessionItselfAreNotTheCallers) {
  const HttpsServer server([](auto&, auto& exchange) { exchange.respond(200, ""); });
  std::istringstream names(
      "Connection Expect Host proxy-authenticate Proxy-Authorization TRANSFER-ENCODING "
      "WWW-Authenticate");
  const std::vector<std::string> reserved(std::istream_iterator<std::string>(names), {});
  const std::string body(2 << 20, 'x');  // before such a body libcurl would ask
  URLRequest request = postFor(server.address("/"), body);
  for (const std::string& field : reserved) {
    request.setValue("chunked", field);
  }
  EXPECT_EQ(fetch(std::move(request)).status(), 200);
  const HttpsServer::Request got = server.requests().at(0);
  for (const std::string& field : reserved) {
    EXPECT_NE(got.header(field), "chunked") << field;
  }
  EXPECT_EQ(got.headerCount("Host"), 1);
  EXPECT_EQ(got.headerCount("Expect"), 0);
  EXPECT_TRUE(got.body == body);
}

// In a process of its own, as the language is that of the process.
TEST_F(URLSessionTest, AcceptsTheLanguageOfTheLocale) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const std::pair<const char*, const char*> cases[] = {
      {"de_DE.UTF-8", "de-DE, de;q=0.9"},
      {"ja", "ja"},
      {"zh_Hans_CN", "zh-Hans-CN, zh;q=0.9"},
      {"en_US_POSIX", "en-US, en;q=0.9"},
  };
  for (const auto& [locale, accepted] : cases) {
    const ScopedVariable variable("LC_ALL", locale);
    EXPECT_EXIT(
        {
          const HttpsServer server([](auto&, auto& exchange) { exchange.respond(200, ""); });
          const ScopedVariable trust("SSL_CERT_FILE", HttpsServer::authorityFile());
          fetch(server.address("/"));
          std::fputs(server.requests().at(0).header("Accept-Language")->c_str(), stderr);
          std::_Exit(0);
        },
        testing::ExitedWithCode(0),
        "^" + std::string(accepted) + "$");
  }
}

TEST_F(URLSessionTest, StatusCodesAreNoErrors) {
  const HttpsServer server([](auto& request, auto& exchange) {
    const int status = std::stoi(request.path.substr(1));
    exchange.respond(status, status == 204 || status == 304 ? "" : "body", {{"Location", "/200"}});
  });
  for (const int status : {300, 304, 401, 404, 500, 503}) {
    const Result result = fetch(server.address("/" + std::to_string(status)));
    EXPECT_EQ(result.status(), status);
    EXPECT_EQ(result.errorCode(), 0) << status;
    EXPECT_EQ(result.data, status == 304 ? "" : "body") << status;
  }
}

TEST_F(URLSessionTest, BodiesAreDecoded) {
  // "hello" as a gzip member with one stored block.
  static constexpr std::string_view zipped(
      "\x1f\x8b\x08\0\0\0\0\0\0\x03\x01\x05\0\xfa\xffhello\x86\xa6\x10\x36\x05\0\0\0", 28);
  const HttpsServer server(
      [](auto&, auto& exchange) { exchange.respond(200, zipped, {{"Content-Encoding", "gzip"}}); });
  EXPECT_EQ(fetch(server.address("/")).data, "hello");
  EXPECT_EQ(server.requests().at(0).header("Accept-Encoding"), "gzip, deflate, br");
}

std::string localhost(const FileDescriptor& socket) {
  return "://localhost:" + std::to_string(fixtures::portOf(socket));
}

TEST_F(URLSessionTest, AddressesThatCannotBeAsked) {
  const FileDescriptor closed = fixtures::bound();
  const std::tuple<std::string, int, const char*> cases[] = {
      {"https" + localhost(closed), -1004, "Could not connect to the server."},
      {"https://nowhere.invalid/",
       -1003,
       "A server with the specified hostname could not be found."},
      {"http" + localhost(closed),
       -1022,
       "The resource could not be loaded because the address does not use a secure connection."},
      {"HTTP://localhost/", -1022, nullptr},
      {"ftp://localhost/", -1002, "unsupported URL"},
      {"file:///etc/hostname", -1002, nullptr},
  };
  for (const auto& [address, code, description] : cases) {
    const Result result = fetch(address);
    EXPECT_EQ(result.errorCode(), code) << address;
    EXPECT_EQ(result.data, std::nullopt) << address;
    EXPECT_FALSE(result.response) << address;
    if (description != nullptr && result.error) {
      EXPECT_EQ(result.error->localizedDescription, description);
    }
  }
}

// A request that may have reached the server is never sent again, not even by the library beneath.
TEST_F(URLSessionTest, RequestLostOnAKeptConnectionIsSentOnce) {
  using enum HttpsServer::Protocol;
  for (const auto& [protocol, method] :
       {std::pair{http1, "POST"}, {http1, "GET"}, {http2, "POST"}, {http2, "GET"}}) {
    for (const bool inGoodOrder : {true, false}) {
      std::atomic<int> count = 0;
      const HttpsServer server(protocol, [&](auto&, auto& exchange) {
        if (++count == 1) {
          exchange.respond(200, "kept");
        } else if (inGoodOrder) {
          exchange.close();
        } else {
          exchange.reset();
        }
      });
      URLRequest request = requestFor(server.address("/"));
      request.httpMethod = method;
      request.httpBody = method == std::string_view("POST") ? "{}" : "";
      EXPECT_EQ(fetch(request).data, "kept");
      EXPECT_EQ(fetch(request).errorCode(), -1005) << method;
      EXPECT_EQ(server.requests().size(), 2U) << method;
      EXPECT_EQ(server.connections(), 1) << method;
    }
  }
}

TEST_F(URLSessionTest, ConnectionsThatTheServerClosedMeanwhileAreNoFailures) {
  using namespace std::string_literals;
  using enum HttpsServer::Protocol;
  const std::tuple<HttpsServer::Protocol, bool, std::string> cases[] = {
      {http1, true, ""},
      {http1, false, ""},
      {http1, true, "HTTP/1.1 408 Request Timeout\r\nContent-Length: 0\r\n\r\n"},
      {http2, true, ""},
      {http2, false, ""},
      {http2, true, "\0\0\x08\7\0\0\0\0\0\0\0\0\1\0\0\0\0"s},  // GOAWAY
  };
  for (const auto& [protocol, inGoodOrder, lastWords] : cases) {
    std::promise<void> ended;
    std::atomic<int> count = 0;
    HttpsServer server(protocol, [&](auto&, auto& exchange) {
      exchange.respond(200, "fine");
      if (++count == 1) {
        exchange.hold();
        exchange.send(lastWords);
        inGoodOrder ? exchange.close() : exchange.reset();
        ended.set_value();
      }
    });
    EXPECT_EQ(fetch(postFor(server.address("/"), "{}")).data, "fine");
    server.release();
    ended.get_future().wait();
    EXPECT_EQ(fetch(postFor(server.address("/"), "{}")).data, "fine") << lastWords;
    EXPECT_EQ(server.requests().size(), 2U);
    EXPECT_EQ(server.handshakes(), 2);
    EXPECT_GE(server.resumedHandshakes(), protocol == http1 ? 1 : 0);
  }
}

std::string zippedZeros(std::size_t count) {
  const std::string command = "head -c " + std::to_string(count) + " /dev/zero | gzip";
  return fixtures::Program("sh", {"-c", command}).wait().out;
}

constexpr std::size_t bodyLimit = std::size_t{8} << 20;

TEST_F(URLSessionTest, AnswersWithoutAnEndAreErrorsWithoutData) {
  enum End { closed, reset, stalled, flooded, dripping };
  const std::string ok = "HTTP/1.1 200 OK\r\n";
  const std::string half = ok + "Content-Length: 100\r\n\r\nhalf of";
  const std::string chunk = ok + "Transfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n";
  const std::string zipped = ok + "Content-Encoding: gzip\r\n\r\n";
  const std::tuple<const char*, int, std::string, End, std::string> cases[] = {
      {"nothing", -1005, "", closed, ""},
      {"reset in the body", -1005, half, reset, ""},
      {"short body", -1005, half, closed, ""},
      {"chunks without a last one", -1005, chunk, closed, ""},
      {"no HTTP", -1017, "220 mail.test ESMTP ready\r\n\r\n", closed, ""},
      {"endless line", -1017, ok + "X-Long: ", flooded, std::string(16384, 'x')},
      {"endless fields", -1017, ok, flooded, "X-Field: " + std::string(1000, 'x') + "\r\n"},
      {"endless body", -1103, ok + "\r\n", flooded, std::string(bodyLimit / 8, 'x')},
      {"endless when unzipped", -1103, zipped + zippedZeros(2 * bodyLimit), closed, ""},
      {"no gzip", -1015, zipped + "this is no gzip", closed, ""},
      {"silence", -1001, "", stalled, ""},
      {"silence in the body", -1001, half, stalled, ""},
      {"too slow", -1001, ok + "\r\n", dripping, "x"},
  };
  for (const auto& [what, code, sent, end, flood] : cases) {
    const HttpsServer server([&](auto&, auto& exchange) {
      exchange.send(sent);
      while (end >= flooded && exchange.send(flood)) {
        exchange.pause(end == dripping ? 20ms : 0ms);
      }
      if (end == stalled) {
        exchange.hold();
      }
      exchange.pause(20ms);
      end == reset ? exchange.reset() : exchange.close();
    });
    URLSession::shared().setTimeouts(
        {.idle = end == stalled ? 150ms : 10s, .whole = end == dripping ? 300ms : 30s});
    const Result result = fetch(postFor(server.address("/"), "{}"));
    EXPECT_EQ(result.errorCode(), code) << what;
    EXPECT_EQ(result.data, std::nullopt) << what;
  }
}

TEST_F(URLSessionTest, BodiesOfTheLargestSizeArrive) {
  const HttpsServer server([](auto& request, auto& exchange) {
    exchange.respond(200, std::string(bodyLimit + (request.path == "/more" ? 1 : 0), 'x'));
  });
  EXPECT_EQ(fetch(server.address("/")).data.value_or("").size(), bodyLimit);
  EXPECT_EQ(fetch(server.address("/more")).errorCode(), -1103);
}

TEST_F(URLSessionTest, CertificatesAreVerified) {
  using enum HttpsServer::Certificate;
  const fixtures::TemporaryFolder nothingTrusted;
  const std::string authority = HttpsServer::authorityFile();
  using Place = std::optional<std::string>;
  const std::tuple<Place, Place, HttpsServer::Certificate, int> cases[] = {
      {authority, {}, valid, 0},
      {{}, nothingTrusted.path(), valid, -1203},
      {{}, {}, valid, -1203},
      {"/nowhere/authority.pem", {}, valid, -1200},
      {authority, {}, forAnotherHost, -1202},
      {authority, {}, expired, -1201},
      {authority, {}, fromUnknownAuthority, -1203},
  };
  for (const auto& [file, folder, certificate, code] : cases) {
    const ScopedVariable fileVariable("SSL_CERT_FILE", file);
    const ScopedVariable folderVariable("SSL_CERT_DIR", folder);
    const HttpsServer server([](auto&, auto& exchange) { exchange.respond(200, ""); }, certificate);
    EXPECT_EQ(fetch(postFor(server.address("/"), "{}")).errorCode(), code);
    EXPECT_EQ(server.requests().size(), code == 0 ? 1U : 0U) << code;
  }
}

// A connection that was verified with one trust store is no proof for another.
TEST_F(URLSessionTest, KeptConnectionsBelongToTheirTrustStore) {
  const HttpsServer server([](auto&, auto& exchange) { exchange.respond(200, ""); });
  EXPECT_EQ(fetch(server.address("/")).errorCode(), 0);
  const ScopedVariable system("SSL_CERT_FILE", std::nullopt);
  EXPECT_EQ(fetch(server.address("/")).errorCode(), -1203);
}

TEST_F(URLSessionTest, AConnectionThatNobodyTakesIsATimeout) {
  const FileDescriptor silent = fixtures::bound();
  ::listen(silent.get(), 8);
  Results results;
  for (int i = 0; i < 7; ++i) {  // the last one waits in line for its whole time
    URLSession::shared().setTimeouts({.idle = i < 6 ? 600ms : 150ms});
    start(requestFor("https" + localhost(silent)), results.completion());
  }
  for (const Result& result : results.wait(7)) {
    EXPECT_EQ(result.errorCode(), -1001);
  }
}

TEST_F(URLSessionTest, SlowProgressIsNoTimeout) {
  const HttpsServer server([](auto&, auto& exchange) {
    exchange.send("HTTP/1.1 200 OK\r\nContent-Length: 12\r\n\r\n");
    for (int i = 0; i < 12; ++i) {
      exchange.pause(100ms);
      exchange.send("x");
    }
  });
  URLSession::shared().setTimeouts({.idle = 800ms});
  const std::clock_t before = std::clock();
  EXPECT_EQ(fetch(server.address("/")).data, "xxxxxxxxxxxx");
  EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 4) << "waiting keeps no processor busy";
}

TEST_F(URLSessionTest, RedirectsKeepOrDropTheBodyAndNeverCarryTheToken) {
  const std::tuple<int, const char*, const char*> cases[] = {
      {301, "POST", "GET"},
      {302, "POST", "GET"},
      {303, "POST", "GET"},
      {303, "PUT", "GET"},
      {303, "HEAD", "HEAD"},
      {302, "PUT", "PUT"},
      {307, "POST", "POST"},
      {308, "POST", "POST"},
  };
  for (const auto& [status, method, nextMethod] : cases) {
    const HttpsServer server([status = status](auto& request, auto& exchange) {
      if (request.path == "/old") {
        exchange.respond(status, "moved", {{"Location", "/new?a=1"}});
      } else {
        exchange.respond(200, "");
      }
    });
    URLRequest request = postFor(server.address("/old"), "{}");
    request.httpMethod = method;
    request.setValue("kept", "X-Custom");

    const Result result = fetch(std::move(request));
    EXPECT_EQ(result.status(), 200);
    EXPECT_EQ(result.data, "");

    ASSERT_EQ(server.requests().size(), 2U);
    const HttpsServer::Request next = server.requests().at(1);
    EXPECT_EQ(next.path, "/new?a=1");
    EXPECT_EQ(next.method, nextMethod) << status << " " << method;
    const bool carriesBody = next.method == "POST" || next.method == "PUT";
    EXPECT_EQ(next.body, carriesBody ? "{}" : "");
    EXPECT_EQ(next.header("Content-Type").has_value(), carriesBody || next.method == "HEAD");
    EXPECT_EQ(next.header("Authorization"), std::nullopt);
    EXPECT_EQ(next.header("X-Custom"), "kept");
  }
}

TEST_F(URLSessionTest, RedirectsToAnotherHostGoWithoutTheToken) {
  HttpsServer target([](auto&, auto& exchange) { exchange.respond(200, "there"); });
  const HttpsServer server([&](auto&, auto& exchange) {
    const std::string there = "https://127.0.0.1:" + std::to_string(target.port()) + "/";
    exchange.respond(308, "", {{"Location", there}});
  });
  EXPECT_EQ(fetch(postFor(server.address("/"), "{}")).data, "there");
  EXPECT_EQ(target.requests().at(0).body, "{}");
  EXPECT_EQ(target.requests().at(0).header("Authorization"), std::nullopt);
}

TEST_F(URLSessionTest, RedirectsThatAreNotFollowed) {
  const std::tuple<const char*, int, int> cases[] = {
      {nullptr, 302, 0},
      {"http://localhost/", 302, -1022},
      {"ftp://localhost/", 302, -1002},
      {"/again", 302, -1007},
  };
  for (const auto& [location, status, code] : cases) {
    const HttpsServer server([location = location](auto&, auto& exchange) {
      HttpsServer::Headers headers;
      if (location != nullptr) {
        headers.emplace_back("Location", location);
      }
      exchange.respond(302, "moved", headers);
    });
    const Result result = fetch(postFor(server.address("/"), "{}"));
    EXPECT_EQ(result.status(), status);
    EXPECT_EQ(result.errorCode(), code);
    EXPECT_EQ(result.data.has_value(), code == 0);
    EXPECT_EQ(server.requests().size(), code == -1007 ? 21U : 1U);
  }
}

int threadsOfThisProcess() {
  const auto tasks = std::filesystem::directory_iterator("/proc/self/task");
  return static_cast<int>(std::distance(begin(tasks), end(tasks)));
}

TEST_F(URLSessionTest, ManyTasksAtOnceShareFewConnectionsAndNoThreadEach) {
  constexpr int count = 200;
  HttpsServer server([](auto& request, auto& exchange) {
    exchange.hold();
    exchange.respond(200, request.path);
  });
  Results results;
  for (int i = 0; i < count; ++i) {
    const std::string address = server.address("/" + std::to_string(i));
    start(postFor(address, "{}"), results.completion());
  }
  EXPECT_TRUE(server.waitForRequests(6));
  // The test's own thread, the session's two, the server's acceptor and one for each connection,
  // and a few of the sanitizers'.
  EXPECT_LE(threadsOfThisProcess(), 4 + 6 + 4);
  const HttpsServer other([](auto&, auto& exchange) { exchange.respond(200, "other"); });
  EXPECT_EQ(fetch(other.address("/")).data, "other") << "it waits for no other host";
  server.release();

  std::set<std::string> bodies;
  for (const Result& result : results.wait(count)) {
    bodies.insert(result.data.value_or("error"));
  }
  EXPECT_EQ(bodies.size(), std::size_t{count});
  EXPECT_EQ(bodies.count("error"), 0U);
  EXPECT_LE(server.mostConnectionsAtOnce(), 6);
}

TEST_F(URLSessionTest, CompletionsAreCalledOneAtATimeOnOtherThreads) {
  const HttpsServer server([](auto&, auto& exchange) { exchange.respond(200, ""); });
  Results results;
  std::atomic<int> inside = 0;
  std::atomic<bool> overlapped = false;
  // Those that are refused without a connection take the same way.
  const auto startOne = [&](bool refused, auto within) {
    start(
        requestFor(refused ? "http://localhost/" : server.address("/")),
        [&, within, done = results.completion()](auto data, auto response, auto error) mutable {
          overlapped = overlapped || inside.fetch_add(1) != 0;
          within();
          std::this_thread::sleep_for(1ms);
          inside.fetch_sub(1);
          done(std::move(data), response, std::move(error));
        });
  };
  for (int i = 0; i < 60; ++i) {
    startOne(i % 3 == 0, [&, i] {
      if (i < 10) {
        startOne(i % 2 == 0, [] {});
      }
    });
  }
  results.wait(70);
  EXPECT_FALSE(overlapped);
  EXPECT_LE(results.threads().size(), 2U);
  EXPECT_EQ(results.threads().count(std::this_thread::get_id()), 0U);
}

TEST_F(URLSessionTest, ASlowCompletionHoldsNoTransferUp) {
  HttpsServer server([](auto& request, auto& exchange) {
    if (request.path == "/held") {
      exchange.hold();
      exchange.respond(302, "", {{"Location", "/after"}});
    } else {
      exchange.respond(200, "", {{"Connection", "close"}});
    }
  });
  fetch(server.address("/"));
  Results results;
  start(requestFor(server.address("/held")), results.completion());
  EXPECT_TRUE(server.waitForRequests(2));
  bool wentOn = false;
  start(
      requestFor(server.address("/")),
      [&, done = results.completion()](auto data, auto response, auto error) mutable {
        server.release();
        wentOn = server.waitForRequests(4);
        done(std::move(data), response, std::move(error));
      });
  results.wait(2);
  EXPECT_TRUE(wentOn);
  EXPECT_EQ(server.resumedHandshakes(), server.handshakes() - 1) << "TLS sessions are shared";
}

// Tells where its last owner let go of it.
std::shared_ptr<void> tracer(std::promise<std::thread::id>& end) {
  return {&end, [&end](void*) { end.set_value(std::this_thread::get_id()); }};
}

TEST_F(URLSessionTest, CompletionsAreDestroyedWhereTheyAreCalled) {
  const HttpsServer server([](auto&, auto& exchange) { exchange.respond(200, ""); });
  for (const std::string& address : {server.address("/"), std::string("http://localhost/")}) {
    std::promise<std::thread::id> ended;
    std::thread::id called;
    start(requestFor(address), [&called, traced = tracer(ended)](auto&&...) {
      called = std::this_thread::get_id();
    });
    EXPECT_EQ(ended.get_future().get(), called);
  }

  Results results;
  std::shared_ptr<void> last(
      &results, [&](void*) { start(requestFor("http://localhost/"), results.completion()); });
  start(requestFor("http://localhost/"), [last = std::move(last)](auto&&...) {});
  EXPECT_EQ(results.wait(1).size(), 1U) << "its end may start a task";

  std::promise<std::thread::id> dropped;
  {
    auto task = URLSession::shared().dataTask(
        requestFor(server.address("/")), [traced = tracer(dropped)](auto&&...) { FAIL(); });
  }
  EXPECT_EQ(dropped.get_future().get(), std::this_thread::get_id());
}

TEST_F(URLSessionTest, WatcherIsToldOfEveryEnd) {
  const HttpsServer server([](auto& request, auto& exchange) {
    if (request.path == "/lost?token=secret") {
      exchange.reset();
    } else {
      exchange.respond(401, "refused");
    }
  });
  std::vector<TransferReport> reports;
  std::vector<std::uint64_t> activities;
  URLSession::shared().watchTransfers(
      [&](const TransferReport& report) { reports.push_back(report); });
  for (const char* path : {"/a/b", "/lost?token=secret"}) {
    Results results;
    const ActivityScope activity(reports.size() + 41);
    start(
        postFor(server.address(path), "body"),
        [&, done = results.completion()](auto data, auto response, auto error) mutable {
          activities.push_back(currentActivity());
          done(std::move(data), response, std::move(error));
        });
    results.wait(1);
  }
  EXPECT_EQ(currentActivity(), 0U);
  EXPECT_THAT(activities, ElementsAre(41U, 42U));
  ASSERT_EQ(reports.size(), 2U);
  EXPECT_EQ(reports[0].activity, 41U);
  EXPECT_EQ(reports[0].path, "/a/b");
  EXPECT_EQ(reports[0].statusCode, 401);
  EXPECT_FALSE(reports[0].error);
  EXPECT_EQ(reports[0].sentBytes, 4U);
  EXPECT_EQ(reports[0].receivedBytes, 7U);
  EXPECT_GT(reports[0].duration, 0us);
  EXPECT_EQ(reports[1].activity, 42U);
  EXPECT_EQ(reports[1].path, "/lost");
  EXPECT_EQ(reports[1].statusCode, 0);
  ASSERT_TRUE(reports[1].error);
  EXPECT_EQ(reports[1].error->code, -1005);
}

TEST_F(URLSessionTest, ProxiesOfTheEnvironmentAreNotAsked) {
  const FileDescriptor nobody = fixtures::bound();
  const ScopedVariable proxy("HTTPS_PROXY", "http" + localhost(nobody));
  const ScopedVariable all("ALL_PROXY", "http" + localhost(nobody));
  const HttpsServer server([](auto&, auto& exchange) { exchange.respond(200, "direct"); });
  EXPECT_EQ(fetch(server.address("/")).data, "direct");
}

TEST_F(URLSessionTest, ProcessEndsCleanlyWhileTransfersRun) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        const HttpsServer& server =
            *new HttpsServer([](auto&, auto& exchange) { exchange.hold(); });
        for (int i = 0; i < 10; ++i) {
          start(requestFor(server.address("/")), [](auto&&...) {});
        }
        server.waitForRequests(6);  // as many as it has connections: none is in a handshake
        std::exit(7);
      },
      testing::ExitedWithCode(7),
      "");
  // A completion that is being called has a moment to end. The session has two threads.
  EXPECT_EXIT(
      {
        std::thread([] {}).join();  // with which a sanitizer may start one of its own
        const int threads = threadsOfThisProcess();
        std::promise<void> called;
        start(requestFor("http://localhost/"), [&](auto&&...) {
          called.set_value();
          std::this_thread::sleep_for(50ms);
          std::fputs("it ended", stderr);
        });
        called.get_future().wait();
        std::exit(threadsOfThisProcess() - threads);
      },
      testing::ExitedWithCode(2),
      "it ended");
  // From within a completion, too, where the session must not wait for itself.
  EXPECT_EXIT(
      {
        start(requestFor("https://localhost:1/"), [](auto&&...) { std::exit(8); });
        pause();
      },
      testing::ExitedWithCode(8),
      "");
}

}  // namespace
}  // namespace quillpad
