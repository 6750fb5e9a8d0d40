#include "support/HttpsServer.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cctype>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <list>
#include <mutex>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include "platform/foundation/BackgroundThread.h"
#include "support/TestCertificates.h"

namespace support {
namespace {

bool sameField(std::string_view left, std::string_view right) {
  return std::ranges::equal(left, right, [](unsigned char a, unsigned char b) {
    return std::tolower(a) == std::tolower(b);
  });
}

CertificateWish wishFor(HttpsServer::Certificate certificate) {
  switch (certificate) {
    case HttpsServer::Certificate::valid:
      break;
    case HttpsServer::Certificate::forAnotherHost:
      return {.host = "elsewhere.test"};
    case HttpsServer::Certificate::expired:
      return {.expired = true};
    case HttpsServer::Certificate::fromUnknownAuthority:
      return {.fromUnknownAuthority = true};
  }
  return {};
}

// The head of a request: "METHOD path HTTP/1.1" and its fields, each line ended by CR LF.
HttpsServer::Request parseHead(std::string_view head) {
  HttpsServer::Request request;
  const auto takeLine = [&head] {
    const std::string_view line = head.substr(0, head.find("\r\n"));
    head.remove_prefix(std::min(head.size(), line.size() + 2));
    return line;
  };
  const std::string_view first = takeLine();
  const std::size_t path = first.find(' ') + 1;
  request.method = first.substr(0, path - 1);
  request.path = first.substr(path, first.find(' ', path) - path);
  while (!head.empty()) {
    const std::string_view line = takeLine();
    const std::size_t colon = line.find(':');
    const std::size_t value = line.find_first_not_of(' ', colon + 1);
    request.headers.emplace_back(
        line.substr(0, colon), value == line.npos ? std::string_view{} : line.substr(value));
  }
  return request;
}

}  // namespace

std::optional<std::string> HttpsServer::Request::header(std::string_view field) const {
  const auto found = std::ranges::find_if(
      headers, [&](const auto& entry) { return sameField(entry.first, field); });
  return found == headers.end() ? std::nullopt : std::optional(found->second);
}

int HttpsServer::Request::headerCount(std::string_view field) const {
  return static_cast<int>(std::ranges::count_if(
      headers, [&](const auto& entry) { return sameField(entry.first, field); }));
}

class HttpsServer::State {
 public:
  State(Handler handler, Certificate certificate, int port)
      : handler_(std::move(handler)), context_(makeServerContext(wishFor(certificate))) {
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (bind(listener_, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        listen(listener_, 512) != 0) {
      std::perror("the test server cannot listen");
      std::abort();
    }
    getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
    acceptor_ = foundation::startBackgroundThread([this] { accept(); });
  }

  ~State() {
    {
      const std::lock_guard lock(mutex_);
      stopping_ = true;
      for (const Connection& connection : open_) {
        shutdown(connection.socket, SHUT_RDWR);
      }
    }
    changed_.notify_all();
    shutdown(listener_, SHUT_RDWR);
    acceptor_.join();
    for (Connection& connection : open_) {
      connection.thread.join();
      close(connection.socket);
    }
    close(listener_);
    SSL_CTX_free(context_);
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  int port() const { return port_; }

  void release() {
    const std::lock_guard lock(mutex_);
    released_ = true;
    changed_.notify_all();
  }

  bool waitForRequests(std::size_t count) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(
        lock, std::chrono::seconds(10), [&] { return requests_.size() >= count; });
  }

  struct Counts {
    int connections = 0;
    int now = 0;
    int mostAtOnce = 0;
    int handshakes = 0;
    int resumed = 0;
  };
  Counts counts() {
    const std::lock_guard lock(mutex_);
    return counts_;
  }
  std::vector<Request> requests() {
    const std::lock_guard lock(mutex_);
    return requests_;
  }

 private:
  struct Connection {
    int socket = -1;
    std::thread thread;
  };

  class LiveExchange : public Exchange {
   public:
    LiveExchange(State& state, SSL* tls, int socket) : state_(state), tls_(tls), socket_(socket) {}

    void respond(int status, std::string_view body, const Headers& headers) override {
      std::string answer = "HTTP/1.1 " + std::to_string(status) + " Status\r\n";
      for (const auto& [field, value] : headers) {
        answer.append(field).append(": ").append(value).append("\r\n");
      }
      answer += "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
      answer += body;
      send(answer);
    }

    bool send(std::string_view bytes) override {
      return open_ &&
             (bytes.empty() || SSL_write(tls_, bytes.data(), static_cast<int>(bytes.size())) > 0);
    }

    void hold() override {
      std::unique_lock lock(state_.mutex_);
      state_.changed_.wait(lock, [&] { return state_.released_ || state_.stopping_; });
    }

    void pause(std::chrono::milliseconds duration) override {
      std::unique_lock lock(state_.mutex_);
      state_.changed_.wait_for(lock, duration, [&] { return state_.stopping_; });
    }

    void close() override {
      SSL_shutdown(tls_);
      shutdown(socket_, SHUT_RDWR);
      open_ = false;
    }

    void reset() override {
      // Connecting a socket to nothing aborts its connection with a reset.
      const sockaddr nothing{.sa_family = AF_UNSPEC, .sa_data = {}};
      open_ = ::connect(socket_, &nothing, sizeof nothing) != 0;
    }

    bool open() const { return open_; }

   private:
    State& state_;
    SSL* tls_;
    int socket_;
    bool open_ = true;
  };

  void accept() {
    while (true) {
      const int socket = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
      if (socket < 0) {
        return;
      }
      const int on = 1;
      setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
      const std::lock_guard lock(mutex_);
      const int number = ++counts_.connections;
      counts_.mostAtOnce = std::max(counts_.mostAtOnce, ++counts_.now);
      Connection& connection = open_.emplace_back(socket);
      connection.thread = foundation::startBackgroundThread([this, socket, number] {
        serve(socket, number);
        const std::lock_guard end(mutex_);
        --counts_.now;
      });
      if (stopping_) {
        shutdown(socket, SHUT_RDWR);
      }
    }
  }

  void serve(int socket, int number) {
    SSL* tls = SSL_new(context_);
    SSL_set_fd(tls, socket);
    if (SSL_accept(tls) > 0) {
      {
        const std::lock_guard lock(mutex_);
        ++counts_.handshakes;
        counts_.resumed += SSL_session_reused(tls);
      }
      LiveExchange exchange(*this, tls, socket);
      std::string buffer;
      while (exchange.open()) {
        std::optional<Request> request = readRequest(tls, buffer);
        if (!request) {
          break;
        }
        request->connection = number;
        {
          const std::lock_guard lock(mutex_);
          requests_.push_back(*request);
        }
        changed_.notify_all();
        handler_(*request, exchange);
      }
    }
    SSL_free(tls);
    shutdown(socket, SHUT_RDWR);
  }

  static bool readMore(SSL* tls, std::string& buffer) {
    char bytes[16384];
    const int count = SSL_read(tls, bytes, sizeof bytes);
    if (count > 0) {
      buffer.append(bytes, static_cast<std::size_t>(count));
    }
    return count > 0;
  }

  static std::optional<Request> readRequest(SSL* tls, std::string& buffer) {
    std::size_t end = 0;
    while ((end = buffer.find("\r\n\r\n")) == std::string::npos) {
      if (!readMore(tls, buffer)) {
        return {};
      }
    }
    Request request = parseHead(std::string_view(buffer).substr(0, end + 2));
    buffer.erase(0, end + 4);
    const std::size_t length =
        std::strtoul(request.header("Content-Length").value_or("0").c_str(), nullptr, 10);
    while (buffer.size() < length) {
      if (!readMore(tls, buffer)) {
        return {};
      }
    }
    request.body = buffer.substr(0, length);
    buffer.erase(0, length);
    return request;
  }

  Handler handler_;
  SSL_CTX* context_;
  int listener_ = -1;
  int port_ = 0;
  std::thread acceptor_;

  std::mutex mutex_;
  std::condition_variable changed_;
  std::list<Connection> open_;
  std::vector<Request> requests_;
  Counts counts_;
  bool released_ = false;
  bool stopping_ = false;
};

HttpsServer::HttpsServer(Handler handler, Certificate certificate, int port)
    : state_(std::make_unique<State>(std::move(handler), certificate, port)) {}
HttpsServer::~HttpsServer() = default;

std::string HttpsServer::authorityFile() { return testAuthorityFile(); }

int HttpsServer::port() const { return state_->port(); }

std::string HttpsServer::address(std::string_view path) const {
  return "https://localhost:" + std::to_string(port()).append(path);
}

void HttpsServer::release() { state_->release(); }

std::vector<HttpsServer::Request> HttpsServer::requests() const { return state_->requests(); }

bool HttpsServer::waitForRequests(std::size_t count) const {
  return state_->waitForRequests(count);
}

int HttpsServer::connections() const { return state_->counts().connections; }
int HttpsServer::mostConnectionsAtOnce() const { return state_->counts().mostAtOnce; }
int HttpsServer::handshakes() const { return state_->counts().handshakes; }
int HttpsServer::resumedHandshakes() const { return state_->counts().resumed; }

}  // namespace support
