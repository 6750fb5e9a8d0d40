#include "demo/Server.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <microhttpd.h>
#include <mutex>
#include <netinet/in.h>
#include <string_view>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace quillpad::demo {
namespace {

constexpr std::size_t maxBodyBytes = 65536;
constexpr unsigned maxConnections = 400;
constexpr unsigned idleSeconds = 20;

// A listening socket on a loopback address, or the reason why there is none.
std::expected<int, std::error_code> listenOn(const sockaddr* address, socklen_t length) {
  const int socket = ::socket(address->sa_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int on = 1;
  if (socket >= 0 && address->sa_family == AF_INET6) {
    setsockopt(socket, IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on);
  }
  if (socket >= 0 && setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) == 0 &&
      bind(socket, address, length) == 0 && listen(socket, SOMAXCONN) == 0) {
    return socket;
  }
  const std::error_code error(errno, std::generic_category());
  if (socket >= 0) {
    close(socket);
  }
  return std::unexpected(error);
}

std::expected<int, std::error_code> listenOnIpv4(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return listenOn(reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

std::expected<int, std::error_code> listenOnIpv6(std::uint16_t port) {
  sockaddr_in6 address{};
  address.sin6_family = AF_INET6;
  address.sin6_port = htons(port);
  address.sin6_addr = in6addr_loopback;
  return listenOn(reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

std::uint16_t portOf(int socket) {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length);
  return ntohs(address.sin_port);
}

std::string fieldOf(MHD_Connection* connection, const char* field) {
  const char* value = MHD_lookup_connection_value(connection, MHD_HEADER_KIND, field);
  return value == nullptr ? "" : value;
}

// What a client sent, fit for a line of the log.
std::string printable(std::string_view text) {
  std::string line(text.substr(0, 100));
  std::ranges::replace_if(line, [](char c) { return c <= ' ' || c > '~'; }, '?');
  return line;
}

// One request as it arrives.
struct RequestState {
  Request request;
  std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
};

ssize_t cutOff(void* bytes, std::uint64_t position, char* buffer, std::size_t size) {
  const std::string_view half(*static_cast<std::string*>(bytes));
  if (position >= half.size()) {
    return MHD_CONTENT_READER_END_WITH_ERROR;
  }
  const std::string_view piece = half.substr(position, size);
  std::memcpy(buffer, piece.data(), piece.size());
  return static_cast<ssize_t>(piece.size());
}

MHD_Response* responseFor(const Answer& answer) {
  if (answer.delivery == Answer::Delivery::truncated) {
    auto* half = new std::string(answer.body.substr(0, answer.body.size() / 2));
    return MHD_create_response_from_callback(
        answer.body.size(), 4096, &cutOff, half, [](void* bytes) {
          delete static_cast<std::string*>(bytes);
        });
  }
  auto* body = const_cast<char*>(answer.body.data());
  return MHD_create_response_from_buffer(answer.body.size(), body, MHD_RESPMEM_MUST_COPY);
}

}  // namespace

class Server::Impl {
 public:
  explicit Impl(Gateway& gateway) : gateway_(gateway) {}

  ~Impl() {
    {
      const std::lock_guard lock(mutex_);
      stopping_ = true;
    }
    stopped_.notify_all();
    for (MHD_Daemon* daemon : daemons_) {
      MHD_stop_daemon(daemon);
    }
  }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  // Takes the listening socket over.
  bool serveOn(int socket, const Certificate& certificate) {
    MHD_Daemon* daemon = MHD_start_daemon(
        MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_THREAD_PER_CONNECTION | MHD_USE_TLS,
        0,
        nullptr,
        nullptr,
        &Impl::onRequest,
        this,
        MHD_OPTION_LISTEN_SOCKET,
        socket,
        MHD_OPTION_HTTPS_MEM_CERT,
        certificate.certificate.c_str(),
        MHD_OPTION_HTTPS_MEM_KEY,
        certificate.key.c_str(),
        MHD_OPTION_HTTPS_PRIORITIES,
        "NORMAL:-VERS-ALL:+VERS-TLS1.3:+VERS-TLS1.2",
        MHD_OPTION_CONNECTION_LIMIT,
        maxConnections,
        MHD_OPTION_CONNECTION_TIMEOUT,
        idleSeconds,
        MHD_OPTION_NOTIFY_COMPLETED,
        &Impl::onEnd,
        nullptr,
        MHD_OPTION_END);
    if (daemon == nullptr) {
      close(socket);
      return false;
    }
    daemons_.push_back(daemon);
    return true;
  }

  void setPort(std::uint16_t port) { port_ = port; }
  std::uint16_t port() const { return port_; }

 private:
  static MHD_Result onRequest(
      void* self,
      MHD_Connection* connection,
      const char* path,
      const char* method,
      const char* /*version*/,
      const char* upload,
      std::size_t* uploadSize,
      void** state) {
    auto& server = *static_cast<Impl*>(self);
    auto* requestState = static_cast<RequestState*>(*state);
    if (requestState == nullptr) {
      *state = new RequestState{
          .request = {
              .method = method,
              .path = path,
              .contentType = fieldOf(connection, "Content-Type"),
              .authorization = fieldOf(connection, "Authorization"),
              .body = {}}};
      return MHD_YES;
    }
    if (*uploadSize > 0) {
      // One byte more than allowed is kept, to know.
      std::string& body = requestState->request.body;
      body.append(upload, std::min(*uploadSize, maxBodyBytes + 1 - body.size()));
      *uploadSize = 0;
      return MHD_YES;
    }
    return server.answer(connection, *requestState);
  }

  static void onEnd(
      void* /*self*/, MHD_Connection* /*connection*/, void** state, MHD_RequestTerminationCode) {
    delete static_cast<RequestState*>(*state);
    *state = nullptr;
  }

  MHD_Result answer(MHD_Connection* connection, const RequestState& state) {
    Answer answer = answerTo(connection, state.request);
    if (!waitFor(answer.delay)) {
      answer.delivery = Answer::Delivery::dropped;
    }
    log(state, answer);
    if (answer.delivery == Answer::Delivery::dropped) {
      return MHD_NO;
    }
    MHD_Response* response = responseFor(answer);
    MHD_add_response_header(response, "Content-Type", answer.contentType.c_str());
    MHD_add_response_header(response, "Cache-Control", "no-store");
    const MHD_Result queued =
        MHD_queue_response(connection, static_cast<unsigned>(answer.status), response);
    MHD_destroy_response(response);
    return queued;
  }

  Answer answerTo(MHD_Connection* connection, const Request& request) {
    if (!isOwnHost(fieldOf(connection, "Host"))) {
      return refuse(421, "this server is https://localhost:" + std::to_string(port_));
    }
    if (MHD_lookup_connection_value(connection, MHD_HEADER_KIND, "Origin") != nullptr) {
      return refuse(403, "web pages have no access");
    }
    if (request.body.size() > maxBodyBytes) {
      return refuse(413, "the body is too large");
    }
    return gateway_.answer(request);
  }

  bool isOwnHost(const std::string& host) const {
    const std::string port = ":" + std::to_string(port_);
    const std::array names = {"localhost" + port, "127.0.0.1" + port, "[::1]" + port};
    return std::ranges::find(names, host) != names.end();
  }

  // False where the server ends meanwhile.
  bool waitFor(std::chrono::milliseconds delay) {
    std::unique_lock lock(mutex_);
    return !stopped_.wait_for(lock, delay, [this] { return stopping_; });
  }

  void log(const RequestState& state, const Answer& answer) {
    const auto passed = std::chrono::steady_clock::now() - state.begin;
    const std::string outcome =
        answer.delivery == Answer::Delivery::dropped ? "dropped" : std::to_string(answer.status);
    const std::lock_guard lock(mutex_);
    std::printf(
        "%s %s %s%s %zu bytes %.1f ms\n",
        printable(state.request.method).c_str(),
        printable(state.request.path).c_str(),
        outcome.c_str(),
        answer.delivery == Answer::Delivery::truncated ? " truncated" : "",
        answer.body.size(),
        std::chrono::duration<double, std::milli>(passed).count());
    std::fflush(stdout);
  }

  Gateway& gateway_;
  std::uint16_t port_ = 0;
  std::vector<MHD_Daemon*> daemons_;
  std::mutex mutex_;
  std::condition_variable stopped_;
  bool stopping_ = false;
};

std::expected<std::unique_ptr<Server>, std::string> Server::start(
    std::uint16_t port, const Certificate& certificate, Gateway& gateway) {
  auto impl = std::make_unique<Impl>(gateway);
  const std::expected<int, std::error_code> socket = listenOnIpv4(port);
  if (!socket) {
    return std::unexpected(
        "Port " + std::to_string(port) + " of 127.0.0.1 cannot be listened on (" +
        socket.error().message() + "): choose another with --port, or 0 for a free one.");
  }
  impl->setPort(portOf(*socket));
  if (!impl->serveOn(*socket, certificate)) {
    return std::unexpected("The HTTPS server cannot be started with its certificate.");
  }
  // Where a machine has no IPv6, or something else has the port there, IPv4 does.
  if (const auto second = listenOnIpv6(impl->port())) {
    impl->serveOn(*second, certificate);
  }
  return std::unique_ptr<Server>(new Server(std::move(impl)));
}

Server::Server(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Server::~Server() = default;

std::uint16_t Server::port() const { return impl_->port(); }

}  // namespace quillpad::demo
