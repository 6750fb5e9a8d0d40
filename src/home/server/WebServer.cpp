#include "home/server/WebServer.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <microhttpd.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <system_error>

#include "platform/foundation/FileDescriptor.h"

namespace quillpad::home {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr unsigned connectionLimit = 2048;
constexpr unsigned stallSeconds = 15;  // a peer that takes nothing for so long is gone
constexpr std::size_t requestMemory = std::size_t{48} * 1024;  // for the head of a request
constexpr std::size_t streamBlock = std::size_t{16} * 1024;

std::string_view header(MHD_Connection* connection, const char* name) {
  const char* value = MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
  return value == nullptr ? std::string_view() : std::string_view(value);
}

// Every connection and the daemon's own descriptors need one.
void allowManyDescriptors() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < connectionLimit + 256) {
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, connectionLimit + 256);
    ::setrlimit(RLIMIT_NOFILE, &limit);
  }
}

std::unexpected<std::error_code> systemError() {
  return std::unexpected(std::error_code(errno, std::generic_category()));
}

// A socket that listens on 127.0.0.1.
std::expected<FileDescriptor, std::error_code> listenOnLoopback(std::uint16_t port) {
  FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  const int yes = 1;
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (!socket || ::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) != 0 ||
      ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(socket.get(), SOMAXCONN) != 0) {
    return systemError();
  }
  return socket;
}

std::uint16_t portOf(int socket) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

WebAnswer plainAnswer(int status, std::string text) {
  return {.status = status, .body = std::move(text) + "\n"};
}

}  // namespace

std::string_view WebRequest::parameter(std::string_view name) const {
  const auto found = parameters.find(name);
  return found == parameters.end() ? std::string_view() : std::string_view(found->second);
}

class WebServer::Engine {
 public:
  Engine(Limits limits, Handler handler) : limits_(limits), handler_(std::move(handler)) {}

  ~Engine() {
    if (daemon_ == nullptr) {
      return;
    }
    ending_ = true;
    resumeAll();
    MHD_run(daemon_);
    MHD_quiesce_daemon(daemon_);  // the listening socket stays the listener's to close
    MHD_stop_daemon(daemon_);
  }

  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  std::expected<void, std::error_code> start(std::uint16_t port) {
    allowManyDescriptors();
    auto socket = listenOnLoopback(port);
    if (!socket) {
      return std::unexpected(socket.error());
    }
    port_ = portOf(socket->get());
    for (const char* name : {"127.0.0.1:", "localhost:"}) {
      hosts_.push_back(name + std::to_string(port_));
    }
    daemon_ = MHD_start_daemon(
        MHD_USE_EPOLL | MHD_ALLOW_SUSPEND_RESUME,
        0,
        nullptr,
        nullptr,
        &Engine::handle,
        this,
        MHD_OPTION_LISTEN_SOCKET,
        socket->get(),
        MHD_OPTION_CONNECTION_LIMIT,
        connectionLimit,
        MHD_OPTION_CONNECTION_TIMEOUT,
        stallSeconds,
        MHD_OPTION_CONNECTION_MEMORY_LIMIT,
        requestMemory,
        MHD_OPTION_NOTIFY_CONNECTION,
        &Engine::connectionChanged,
        this,
        MHD_OPTION_NOTIFY_COMPLETED,
        &Engine::completed,
        this,
        MHD_OPTION_STRICT_FOR_CLIENT,
        1,
        MHD_OPTION_END);
    if (daemon_ == nullptr) {
      return systemError();
    }
    listener_ = std::move(*socket);
    return {};
  }

  std::uint16_t port() const { return port_; }

  int descriptor() const {
    return MHD_get_daemon_info(daemon_, MHD_DAEMON_INFO_EPOLL_FD)->epoll_fd;
  }

  std::chrono::milliseconds patience() const {
    std::chrono::milliseconds patience = limits_.heartbeat;
    if (MHD_UNSIGNED_LONG_LONG timeout = 0; MHD_get_timeout(daemon_, &timeout) == MHD_YES) {
      patience = std::min(patience, std::chrono::milliseconds(timeout));
    }
    if (!busy_.empty()) {
      const auto left =
          std::chrono::ceil<std::chrono::milliseconds>(nearestDeadline() - Clock::now());
      patience = std::min(patience, std::max(left, 0ms));
    }
    return patience;
  }

  void run() {
    MHD_run(daemon_);
    const auto now = Clock::now();
    for (Wire* wire : std::vector<Wire*>(busy_.begin(), busy_.end())) {
      if (wire->deadline <= now) {
        hangUp(*wire);
      }
    }
    if (now >= nextHeartbeat_) {
      nextHeartbeat_ = now + limits_.heartbeat;
      for (Exchange* stream : streams_) {
        stream->beatDue = true;
      }
      wake();
    }
  }

  void wake() {
    for (Exchange* exchange : std::vector<Exchange*>(suspended_.begin(), suspended_.end())) {
      if (exchange->later) {
        exchange->answer = exchange->later();
      } else if (!exchange->block) {
        exchange->fetch();
      }
      if (exchange->answer || exchange->block) {
        resume(*exchange);
      }
    }
    MHD_run(daemon_);
  }

 private:
  // A connection, as long as it is open.
  struct Wire {
    int descriptor = -1;
    Clock::time_point deadline;
    bool timed = false;
    std::list<Wire*>::iterator place;
  };

  // One request and its answer.
  struct Exchange {
    MHD_Connection* connection = nullptr;
    Engine* engine = nullptr;
    Wire* wire = nullptr;
    std::optional<WebAnswer> answer;
    LaterAnswer later;
    EventStream stream;
    std::shared_ptr<const std::string> block;  // of the stream, being sent
    std::size_t sent = 0;
    bool beatDue = false;

    void fetch() {
      static const auto beat = std::make_shared<const std::string>(":\n\n");
      sent = 0;
      block = stream();
      if (!block && std::exchange(beatDue, false)) {
        block = beat;
      }
    }
  };

  static MHD_Result handle(
      void* self,
      MHD_Connection* connection,
      const char* path,
      const char* method,
      const char* /*version*/,
      const char* /*body*/,
      std::size_t* bodySize,
      void** state) {
    auto& engine = *static_cast<Engine*>(self);
    if (*state == nullptr) {
      auto exchange = std::make_unique<Exchange>();
      exchange->connection = connection;
      exchange->engine = &engine;
      exchange->wire = wireOf(connection);
      *state = exchange.release();
      // A body is not waited for: the answer comes first and ends the connection.
      const std::string_view length = header(connection, MHD_HTTP_HEADER_CONTENT_LENGTH);
      if ((!length.empty() && length != "0") ||
          !header(connection, MHD_HTTP_HEADER_TRANSFER_ENCODING).empty()) {
        return engine.send(connection, plainAnswer(413, "A request here has no body."));
      }
      return MHD_YES;
    }
    *bodySize = 0;
    return engine.answer(*static_cast<Exchange*>(*state), path, method);
  }

  MHD_Result answer(Exchange& exchange, const char* path, const char* method) {
    if (!exchange.answer && !exchange.later) {
      begin(exchange, path, method);
    }
    if (const auto answer = std::exchange(exchange.answer, std::nullopt)) {
      exchange.later = nullptr;
      setTimer(*exchange.wire, limits_.answerTime);
      return send(exchange.connection, *answer);
    }
    if (exchange.later) {
      suspend(exchange);
      return MHD_YES;
    }
    return sendStream(exchange);
  }

  // Has the request answered, or finds out how it will be.
  void begin(Exchange& exchange, const char* path, const char* method) {
    stopTimer(*exchange.wire);
    if (auto refusal = refusalOf(exchange.connection, method)) {
      exchange.answer = std::move(refusal);
      return;
    }
    WebRequest request{
        .method = method,
        .path = path,
        .parameters = {},
        .pageToken = std::string(header(exchange.connection, "X-Page-Token"))};
    MHD_get_connection_values(
        exchange.connection,
        MHD_GET_ARGUMENT_KIND,
        [](void* parameters, MHD_ValueKind, const char* name, const char* value) {
          static_cast<decltype(request.parameters)*>(parameters)
              ->emplace(name, value == nullptr ? "" : value);
          return MHD_YES;
        },
        &request.parameters);
    WebReply reply = handler_(request);
    if (auto* answer = std::get_if<WebAnswer>(&reply)) {
      exchange.answer = std::move(*answer);
    } else if (auto* later = std::get_if<LaterAnswer>(&reply)) {
      exchange.answer = (*later)();
      exchange.later = std::move(*later);
      if (!exchange.answer && suspended_.size() - idleStreams_ >= limits_.laterAnswers) {
        exchange.answer = plainAnswer(503, "The home screen is busy. Try again in a moment.");
      }
    } else if (streams_.size() >= limits_.streams) {
      exchange.answer = plainAnswer(503, "Too many tabs are open.");
    } else {
      exchange.stream = std::move(std::get<EventStream>(reply));
    }
  }

  // A page of another place must not reach the home screen through the browser: not under a name
  // that its own server resolves to this machine, and not with a request of its own making.
  std::optional<WebAnswer> refusalOf(MHD_Connection* connection, std::string_view method) const {
    const std::string_view host = header(connection, MHD_HTTP_HEADER_HOST);
    if (std::ranges::find(hosts_, host) == hosts_.end()) {
      return plainAnswer(
          421, "This is the home screen at http://" + hosts_.front() + "/ and nothing else.");
    }
    const std::string_view origin = header(connection, "Origin");
    const bool sameOrigin = std::ranges::any_of(
        hosts_, [&](const std::string& name) { return origin == "http://" + name; });
    const std::string_view site = header(connection, "Sec-Fetch-Site");
    const bool ownSite = site.empty() || site == "same-origin" || site == "none";
    const bool navigation = header(connection, "Sec-Fetch-Mode") == "navigate" && method == "GET";
    if ((!origin.empty() && !sameOrigin) || (!ownSite && !navigation)) {
      return plainAnswer(403, "Only the home screen's own page may ask for this.");
    }
    if (method != "GET" && method != "HEAD" && method != "POST") {
      WebAnswer answer = plainAnswer(405, "The method is not known here.");
      answer.headers.emplace_back("Allow", "GET, HEAD, POST");
      return answer;
    }
    return std::nullopt;
  }

  static void addHeaders(MHD_Response* response, const WebAnswer& answer) {
    MHD_add_response_header(response, "Content-Type", answer.contentType.c_str());
    for (const auto& [name, value] : answer.headers) {
      MHD_add_response_header(response, name.c_str(), value.c_str());
    }
    static constexpr std::pair<const char*, const char*> always[] = {
        {"Cache-Control", "no-store"},
        {"X-Content-Type-Options", "nosniff"},
        {"X-Frame-Options", "DENY"},
        {"Referrer-Policy", "no-referrer"},
        {"Cross-Origin-Resource-Policy", "same-origin"},
        {"Cross-Origin-Opener-Policy", "same-origin"},
    };
    for (const auto& [name, value] : always) {
      MHD_add_response_header(response, name, value);
    }
    if (MHD_get_response_header(response, "Content-Security-Policy") == nullptr) {
      MHD_add_response_header(
          response, "Content-Security-Policy", "default-src 'none'; frame-ancestors 'none'");
    }
  }

  static MHD_Result send(MHD_Connection* connection, const WebAnswer& answer) {
    MHD_Response* response = MHD_create_response_from_buffer(
        answer.body.size(),
        const_cast<char*>(answer.body.data()),  // NOLINT: copied
        MHD_RESPMEM_MUST_COPY);
    addHeaders(response, answer);
    const MHD_Result queued =
        MHD_queue_response(connection, static_cast<unsigned>(answer.status), response);
    MHD_destroy_response(response);
    return queued;
  }

  MHD_Result sendStream(Exchange& exchange) {
    MHD_Response* response = MHD_create_response_from_callback(
        MHD_SIZE_UNKNOWN, streamBlock, &Engine::readStream, &exchange, nullptr);
    addHeaders(response, {.contentType = "text/event-stream; charset=utf-8", .body = ""});
    const MHD_Result queued = MHD_queue_response(exchange.connection, 200, response);
    MHD_destroy_response(response);
    if (queued == MHD_YES) {
      streams_.push_back(&exchange);
    }
    return queued;
  }

  static ssize_t readStream(void* cls, std::uint64_t /*position*/, char* buffer, std::size_t size) {
    auto& exchange = *static_cast<Exchange*>(cls);
    if (exchange.engine->ending_) {
      return MHD_CONTENT_READER_END_OF_STREAM;
    }
    if (!exchange.block) {
      exchange.fetch();
    }
    if (!exchange.block) {
      exchange.engine->suspend(exchange);
      return 0;
    }
    const std::size_t count = std::min(size, exchange.block->size() - exchange.sent);
    std::copy_n(exchange.block->data() + exchange.sent, count, buffer);
    exchange.sent += count;
    if (exchange.sent == exchange.block->size()) {
      exchange.block.reset();
    }
    return static_cast<ssize_t>(count);
  }

  static void completed(
      void* self,
      MHD_Connection* /*connection*/,
      void** state,
      MHD_RequestTerminationCode /*why*/) {
    auto& engine = *static_cast<Engine*>(self);
    const std::unique_ptr<Exchange> exchange(static_cast<Exchange*>(*state));
    *state = nullptr;
    if (exchange) {
      std::erase(engine.streams_, exchange.get());
      engine.forget(*exchange);
      engine.setTimer(*exchange->wire, engine.limits_.requestTime);
    }
  }

  static void connectionChanged(
      void* self, MHD_Connection* connection, void** context, MHD_ConnectionNotificationCode what) {
    auto& engine = *static_cast<Engine*>(self);
    if (what == MHD_CONNECTION_NOTIFY_STARTED) {
      auto wire = std::make_unique<Wire>();
      wire->descriptor =
          MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd;
      engine.setTimer(*wire, engine.limits_.requestTime);
      *context = wire.release();
      if (engine.busy_.size() > engine.limits_.otherConnections) {
        engine.hangUp(*engine.busy_.front());
      }
    } else {
      const std::unique_ptr<Wire> wire(static_cast<Wire*>(*context));
      *context = nullptr;
      engine.stopTimer(*wire);
    }
  }

  static Wire* wireOf(MHD_Connection* connection) {
    return static_cast<Wire*>(
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT)->socket_context);
  }

  void setTimer(Wire& wire, std::chrono::milliseconds time) {
    stopTimer(wire);
    wire.deadline = Clock::now() + time;
    wire.timed = true;
    wire.place = busy_.insert(busy_.end(), &wire);
  }

  void stopTimer(Wire& wire) {
    if (std::exchange(wire.timed, false)) {
      busy_.erase(wire.place);
    }
  }

  Clock::time_point nearestDeadline() const {
    return (*std::ranges::min_element(busy_, {}, &Wire::deadline))->deadline;
  }

  void hangUp(Wire& wire) {
    stopTimer(wire);
    ::shutdown(wire.descriptor, SHUT_RDWR);
  }

  void suspend(Exchange& exchange) {
    suspended_.push_back(&exchange);
    idleStreams_ += exchange.stream ? 1 : 0;
    MHD_suspend_connection(exchange.connection);
  }

  void resume(Exchange& exchange) {
    forget(exchange);
    MHD_resume_connection(exchange.connection);
  }

  void forget(Exchange& exchange) {
    if (std::erase(suspended_, &exchange) > 0) {
      idleStreams_ -= exchange.stream ? 1 : 0;
    }
  }

  void resumeAll() {
    for (Exchange* exchange : std::vector<Exchange*>(suspended_.begin(), suspended_.end())) {
      if (exchange->later) {
        exchange->answer = plainAnswer(503, "The home screen is stopping.");
      }
      resume(*exchange);
    }
  }

  Limits limits_;
  Handler handler_;
  std::uint16_t port_ = 0;
  std::vector<std::string> hosts_;
  FileDescriptor listener_;
  MHD_Daemon* daemon_ = nullptr;
  std::list<Wire*> busy_;  // connections with a deadline, the longest in their state first
  std::vector<Exchange*> streams_;
  std::vector<Exchange*> suspended_;
  std::size_t idleStreams_ = 0;  // of the suspended
  Clock::time_point nextHeartbeat_ = Clock::now() + limits_.heartbeat;
  bool ending_ = false;
};

std::expected<WebServer, std::string> WebServer::start(
    std::uint16_t port, Limits limits, Handler handler) {
  auto engine = std::make_unique<Engine>(limits, std::move(handler));
  if (const auto started = engine->start(port); !started) {
    const std::string reason = started.error() == std::errc::address_in_use
                                   ? "another program uses it; choose another with --port"
                                   : started.error().message();
    return std::unexpected("port " + std::to_string(port) + " cannot be listened on: " + reason);
  }
  return WebServer(std::move(engine));
}

WebServer::WebServer(std::unique_ptr<Engine> engine) : engine_(std::move(engine)) {}
WebServer::~WebServer() = default;
WebServer::WebServer(WebServer&& other) noexcept = default;

std::uint16_t WebServer::port() const { return engine_->port(); }
int WebServer::descriptor() const { return engine_->descriptor(); }
std::chrono::milliseconds WebServer::patience() const { return engine_->patience(); }
void WebServer::run() { engine_->run(); }
void WebServer::wake() { engine_->wake(); }

}  // namespace quillpad::home
