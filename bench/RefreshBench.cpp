// What a refresh costs over the URL session, beside a bare libcurl loop that posts the same bytes
// to the same server: time and handshakes on a kept connection, 200 tasks at once, and the memory
// of this process over 10,000 refreshes. The server is a process of its own.

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <curl/curl.h>
#include <fstream>
#include <mutex>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "fixtures/HttpsServer.h"
#include "platform/foundation/Fatal.h"
#include "platform/net/URLSession.h"

using namespace quillpad;

namespace {
using fixtures::HttpsServer;
using Clock = std::chrono::steady_clock;

constexpr const char* path = "/invoice/invoice/getDataMap";
const std::string body = R"({
  "businessId" : "demo",
  "currentTime" : "2026-03-07 09:05:03"
})";

// A server in a child process: refreshes at the path, its counts at any other.
class ServerProcess {
 public:
  ServerProcess() {
    const std::string authority = HttpsServer::authorityFile();
    setenv("SSL_CERT_FILE", authority.c_str(), 1);
    int ends[2] = {};
    if (pipe(ends) != 0) {
      std::abort();
    }
    process_ = fork();
    if (process_ == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      const HttpsServer* self = nullptr;
      const HttpsServer server([&self](const auto& request, auto& exchange) {
        exchange.respond(
            200,
            request.path == path
                ? R"({"code":200,"data":"{\"salesMonth\":1520.5,\"unpaidInvoices\":3,\"pendingEstimates\":0}"})"
                : std::to_string(self->handshakes()) + " handshakes, at most " +
                      std::to_string(self->mostConnectionsAtOnce()) + " connections at once");
      });
      self = &server;
      const int port = server.port();
      if (write(ends[1], &port, sizeof port) == sizeof port) {
        while (true) {
          pause();
        }
      }
      _exit(1);
    }
    if (read(ends[0], &port_, sizeof port_) != sizeof port_) {
      std::abort();
    }
  }
  ~ServerProcess() {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  std::string address(const char* at) const {
    return "https://localhost:" + std::to_string(port_) + at;
  }

 private:
  pid_t process_ = 0;
  int port_ = 0;
};

std::size_t keep(char* bytes, std::size_t size, std::size_t count, void* text) {
  static_cast<std::string*>(text)->append(bytes, size * count);
  return size * count;
}

// The bare loop: one easy handle, used again and again.
class BareClient {
 public:
  BareClient(const std::string& address, const std::string& token) : handle_(curl_easy_init()) {
    headers_ = curl_slist_append(nullptr, "Content-Type: application/json");
    headers_ = curl_slist_append(headers_, ("Authorization: " + token).c_str());
    headers_ = curl_slist_append(headers_, "Expect:");
    curl_easy_setopt(handle_, CURLOPT_URL, address.c_str());
    curl_easy_setopt(handle_, CURLOPT_CAINFO, std::getenv("SSL_CERT_FILE"));
    curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, headers_);
    curl_easy_setopt(handle_, CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
    curl_easy_setopt(handle_, CURLOPT_POSTFIELDS, body.c_str());
    curl_easy_setopt(handle_, CURLOPT_WRITEFUNCTION, &keep);
    curl_easy_setopt(handle_, CURLOPT_WRITEDATA, &answer_);
  }
  ~BareClient() {
    curl_easy_cleanup(handle_);
    curl_slist_free_all(headers_);
  }
  BareClient(const BareClient&) = delete;
  BareClient& operator=(const BareClient&) = delete;

  bool refresh() {
    answer_.clear();
    return curl_easy_perform(handle_) == CURLE_OK && !answer_.empty();
  }

 private:
  CURL* handle_;
  curl_slist* headers_ = nullptr;
  std::string answer_;
};

// Starts tasks over the session and waits for their ends.
class SessionClient {
 public:
  explicit SessionClient(const std::string& address, std::string token = "token")
      : address_(forced(URL::parse(address), "the address")), token_(std::move(token)) {}

  void start() {
    URLRequest request(address_);
    request.httpMethod = "POST";
    request.httpBody = body;
    request.setValue(std::to_string(body.size()), "content-length");
    request.setValue("application/json", "Content-type");
    request.setValue(token_, "Authorization");
    URLSession::shared()
        .dataTask(
            std::move(request),
            [this](const auto& data, auto&&, auto&&) {
              const std::lock_guard lock(mutex_);
              lastEnd_ = Clock::now();
              answer_ = data.value_or("");
              ++ended_;
              changed_.notify_one();
            })
        .resume();
  }

  bool wait(int count) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return ended_ >= count; });
    ended_ -= count;
    return !answer_.empty();
  }

  bool refresh() {
    start();
    return wait(1);
  }

  // When the last completion was called.
  Clock::time_point lastEnd() {
    const std::lock_guard lock(mutex_);
    return lastEnd_;
  }

  std::string answer() {
    const std::lock_guard lock(mutex_);
    return answer_;
  }

 private:
  URL address_;
  std::string token_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::string answer_;
  Clock::time_point lastEnd_;
  int ended_ = 0;
};

double microseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::micro>(duration).count();
}

void require(bool succeeded) {
  if (!succeeded) {
    std::fprintf(stderr, "a refresh failed\n");
    std::exit(1);
  }
}

double quantile(std::vector<double> values, double share) {
  std::ranges::sort(values);
  return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}

void printMemory(const char* when) {
  std::ifstream file("/proc/self/smaps_rollup");
  long resident = 0;
  long privateSize = 0;
  for (std::string name; file >> name;) {
    long size = 0;
    if (name == "Rss:" && file >> size) {
      resident += size;
    } else if ((name == "Private_Clean:" || name == "Private_Dirty:") && file >> size) {
      privateSize += size;
    }
  }
  std::printf("  %-24s resident %6ld b, private %6ld b\n", when, resident, privateSize);
}

std::string countsOf(const ServerProcess& server) {
  SessionClient client(server.address("/counts"));
  client.refresh();
  return client.answer();
}

void compareKeptConnections(const std::string& address, const std::string& token) {
  constexpr int rounds = 3000;
  BareClient bare(address, token);
  SessionClient session(address, token);
  bare.refresh();
  session.refresh();
  std::vector<double> bareTimes;
  std::vector<double> sessionTimes;
  for (int i = 0; i < rounds; ++i) {
    Clock::time_point begin = Clock::now();
    require(bare.refresh());
    bareTimes.push_back(microseconds(Clock::now() - begin));
    begin = Clock::now();
    require(session.refresh());
    sessionTimes.push_back(microseconds(session.lastEnd() - begin));
  }
  std::printf(
      "A refresh on a kept connection until its answer is there, %d of each in turn\n", rounds);
  std::printf(
      "  bare libcurl  median %6.1f us, 95%% %6.1f us\n",
      quantile(bareTimes, 0.5),
      quantile(bareTimes, 0.95));
  std::printf(
      "  URL session   median %6.1f us, 95%% %6.1f us, ratio of medians %.2f\n",
      quantile(sessionTimes, 0.5),
      quantile(sessionTimes, 0.95),
      quantile(sessionTimes, 0.5) / quantile(bareTimes, 0.5));
}

void askForManyAtOnce() {
  constexpr int count = 200;
  const ServerProcess server;
  SessionClient session(server.address(path));
  const Clock::time_point begin = Clock::now();
  for (int i = 0; i < count; ++i) {
    session.start();
  }
  require(session.wait(count));
  const double cold = microseconds(session.lastEnd() - begin);
  std::printf("%d tasks at once, no connection kept: %.1f ms\n", count, cold / 1000);
  std::printf("  %s\n", countsOf(server).c_str());
}

void refreshForLong() {
  constexpr int count = 10000;
  const ServerProcess server;
  SessionClient session(server.address(path));
  session.refresh();
  std::printf("Memory of this process over %d refreshes\n", count);
  printMemory("after the first");
  for (int i = 1; i <= count; ++i) {
    session.refresh();
    if (i == count / 2) {
      printMemory("in the middle");
    }
  }
  printMemory("in the end");
  std::printf("  %s\n", countsOf(server).c_str());
}

}  // namespace

// With an address and a token: compares on that server alone, whose certificate SSL_CERT_FILE
// names.
int main(int count, char** arguments) {
  if (count == 3) {
    compareKeptConnections(arguments[1], arguments[2]);
    return 0;
  }
  {
    const ServerProcess server;
    compareKeptConnections(server.address(path), "token");
    std::printf("  both together: %s\n", countsOf(server).c_str());
  }
  askForManyAtOnce();
  refreshForLong();
  return 0;
}
