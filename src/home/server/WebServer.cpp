#include "home/server/WebServer.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <sys/socket.h>
#include <system_error>
#include <utility>
#include <vector>

#include "home/server/ConnectionTimers.h"
#include "home/server/LoopbackListener.h"
#include "home/server/Microhttpd.h"
#include "home/server/RequestPolicy.h"
#include "home/server/StreamReader.h"

namespace quillpad::home {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr unsigned maxConnections = 2048;
constexpr unsigned otherDescriptors =
    256;                               // of the server and of its program, where there are many
constexpr unsigned stallSeconds = 15;  // a peer that takes nothing for so long is gone
constexpr std::size_t maxHeadBytes = std::size_t{48} * 1024;
constexpr std::size_t streamBlock = std::size_t{16} * 1024;

std::string_view header(MHD_Connection* connection, const char* name) {
  const char* value = MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
  return value == nullptr ? std::string_view() : std::string_view(value);
}

RequestHead headOf(MHD_Connection* connection, const char* path, const char* method) {
  return {
      .method = method,
      .path = path,
      .hasQuery =
          MHD_get_connection_values(connection, MHD_GET_ARGUMENT_KIND, nullptr, nullptr) >
          (MHD_lookup_connection_value(connection, MHD_GET_ARGUMENT_KIND, "key") != nullptr ? 1
                                                                                            : 0),
      .host = header(connection, MHD_HTTP_HEADER_HOST),
      .origin = header(connection, "Origin"),
      .fetchSite = header(connection, "Sec-Fetch-Site"),
      .fetchMode = header(connection, "Sec-Fetch-Mode"),
      .fetchDest = header(connection, "Sec-Fetch-Dest"),
      .contentLength = header(connection, MHD_HTTP_HEADER_CONTENT_LENGTH),
      .transferEncoding = header(connection, MHD_HTTP_HEADER_TRANSFER_ENCODING)};
}

WebRequest requestOf(MHD_Connection* connection, const char* path, const char* method) {
  WebRequest request{
      .method = method,
      .path = path,
      .pageToken = std::string(header(connection, "X-Page-Token")),
      .acceptLanguage = std::string(header(connection, MHD_HTTP_HEADER_ACCEPT_LANGUAGE))};
  const auto take = [&](MHD_ValueKind what, decltype(request.parameters)& values) {
    MHD_get_connection_values(
        connection,
        what,
        [](void* into, MHD_ValueKind, const char* name, const char* value) {
          static_cast<decltype(request.parameters)*>(into)->emplace(
              name, value == nullptr ? "" : value);
          return MHD_YES;
        },
        &values);
  };
  take(MHD_GET_ARGUMENT_KIND, request.parameters);
  take(MHD_COOKIE_KIND, request.cookies);
  return request;
}

int descriptorOf(MHD_Connection* connection) {
  return MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd;
}

void addHeaders(MHD_Response* response, const WebAnswer& answer) {
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

MHD_Result send(MHD_Connection* connection, const WebAnswer& answer) {
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

}  // namespace

// Joins libmicrohttpd, which calls back for each connection and request, with the rest.
class WebServer::Engine {
 public:
  Engine(LoopbackListener listener, unsigned connections, Limits limits, Handler handler)
      : limits_(limits),
        handler_(std::move(handler)),
        listener_(std::move(listener)),
        policy_(listener_.port) {
    daemon_ = MHD_start_daemon(
        MHD_USE_EPOLL | MHD_ALLOW_SUSPEND_RESUME,
        0,
        nullptr,
        nullptr,
        &Engine::handle,
        this,
        MHD_OPTION_LISTEN_SOCKET,
        listener_.socket.get(),
        MHD_OPTION_CONNECTION_LIMIT,
        connections,
        MHD_OPTION_CONNECTION_TIMEOUT,
        stallSeconds,
        MHD_OPTION_CONNECTION_MEMORY_LIMIT,
        maxHeadBytes,
        MHD_OPTION_NOTIFY_CONNECTION,
        &Engine::connectionChanged,
        this,
        MHD_OPTION_NOTIFY_COMPLETED,
        &Engine::completed,
        this,
        MHD_OPTION_STRICT_FOR_CLIENT,
        1,
        MHD_OPTION_END);
  }

  ~Engine() {
    if (daemon_ == nullptr) {
      return;
    }
    ending_ = true;
    for (Exchange* exchange : std::vector(suspended_)) {
      if (exchange->later) {
        exchange->answer = plainAnswer(503, "The home screen is stopping.");
      }
      resume(*exchange);
    }
    for (int turn = 0; turn < 4; ++turn) {  // to the ends of the streams, as far as peers take them
      MHD_run(daemon_);
    }
    MHD_quiesce_daemon(daemon_);  // the listening socket stays the listener's to close
    MHD_stop_daemon(daemon_);
  }

  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  bool started() const { return daemon_ != nullptr; }
  std::uint16_t port() const { return listener_.port; }
  int descriptor() const {
    return MHD_get_daemon_info(daemon_, MHD_DAEMON_INFO_EPOLL_FD)->epoll_fd;
  }

  std::chrono::milliseconds pollTimeout() const {
    std::chrono::milliseconds timeout = limits_.heartbeat;
    if (MHD_UNSIGNED_LONG_LONG own = 0; MHD_get_timeout(daemon_, &own) == MHD_YES) {
      timeout = std::min(timeout, std::chrono::milliseconds(own));
    }
    auto deadline = timers_.nextDeadline().value_or(Clock::time_point::max());
    for (const Exchange* exchange : suspended_) {
      deadline = std::min(deadline, exchange->timeoutAt);
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return std::clamp(left, 0ms, timeout);
  }

  void run() {
    MHD_run(daemon_);
    const auto now = Clock::now();
    for (const int connection : timers_.takeExpired(now)) {
      hangUp(connection);
    }
    bool isDue = std::ranges::any_of(
        suspended_, [&](const Exchange* exchange) { return now >= exchange->timeoutAt; });
    if (now >= nextHeartbeat_) {
      isDue = true;
      nextHeartbeat_ = now + limits_.heartbeat;
      for (Exchange* exchange : streams_) {
        if (exchange->stream) {
          exchange->stream->requestHeartbeat();
        }
      }
    }
    if (isDue) {
      wake();
    }
  }

  void wake() {
    const auto now = Clock::now();
    for (Exchange* exchange : std::vector(suspended_)) {
      if (exchange->later) {
        exchange->answer = exchange->later();
        if (now >= exchange->timeoutAt) {
          exchange->timeoutAt = Clock::time_point::max();
        }
      }
      if (exchange->answer || (exchange->stream && exchange->stream->hasMore()) ||
          (exchange->file && exchange->file->hasMore())) {
        resume(*exchange);
      }
    }
    MHD_run(daemon_);
  }

 private:
  // One request and its answer, which is there, still to come, a stream or a file.
  struct Exchange {
    Engine* engine = nullptr;
    MHD_Connection* connection = nullptr;
    std::optional<WebAnswer> answer{};
    std::function<std::optional<WebAnswer>()> later{};
    Clock::time_point timeoutAt = Clock::time_point::max();
    std::optional<StreamReader> stream{};
    std::optional<FileReader> file{};
    WebAnswer fileHead{};
  };

  // Called when a request's head is there, and again when it is to be answered.
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
      *state = std::make_unique<Exchange>(Exchange{&engine, connection}).release();
      const auto refusal = RequestPolicy::refusalOfBody(headOf(connection, path, method));
      return refusal ? send(connection, *refusal) : MHD_YES;
    }
    *bodySize = 0;
    auto& exchange = *static_cast<Exchange*>(*state);
    if (!exchange.answer && !exchange.later) {
      engine.begin(exchange, path, method);
    }
    return engine.answer(exchange);
  }

  // Has the request answered, or finds out how it will be.
  void begin(Exchange& exchange, const char* path, const char* method) {
    timers_.stop(descriptorOf(exchange.connection));
    exchange.answer = policy_.refusal(headOf(exchange.connection, path, method));
    if (exchange.answer) {
      return;
    }
    WebReply reply = handler_(requestOf(exchange.connection, path, method));
    if (auto* answer = std::get_if<WebAnswer>(&reply)) {
      exchange.answer = std::move(*answer);
    } else if (auto* later = std::get_if<LaterAnswer>(&reply)) {
      exchange.answer = later->take();
      exchange.later = std::move(later->take);
      if (later->timeout) {
        exchange.timeoutAt = Clock::now() + *later->timeout;
      }
      if (!exchange.answer && waitingAnswers() >= limits_.laterAnswers) {
        exchange.answer = plainAnswer(503, "The home screen is busy. Try again in a moment.");
      }
    } else if (streams_.size() >= limits_.streams) {
      exchange.answer = plainAnswer(503, "Too many tabs are open.");
    } else if (auto* file = std::get_if<FileStream>(&reply)) {
      exchange.file.emplace(std::move(file->nextPiece));
      exchange.fileHead = {
          .contentType = std::move(file->contentType),
          .body = "",
          .headers = std::move(file->headers)};
    } else {
      exchange.stream.emplace(std::move(std::get<EventStream>(reply)));
    }
  }

  MHD_Result answer(Exchange& exchange) {
    if (const auto answer = std::exchange(exchange.answer, std::nullopt)) {
      exchange.later = nullptr;
      timers_.start(descriptorOf(exchange.connection), Clock::now() + limits_.answerTime);
      return send(exchange.connection, *answer);
    }
    if (exchange.later) {
      suspend(exchange);
      return MHD_YES;
    }
    MHD_Response* response = MHD_create_response_from_callback(
        MHD_SIZE_UNKNOWN, streamBlock, &Engine::readStream, &exchange, nullptr);
    addHeaders(
        response,
        exchange.file ? exchange.fileHead
                      : WebAnswer{.contentType = "text/event-stream; charset=utf-8", .body = ""});
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
      return exchange.file ? MHD_CONTENT_READER_END_WITH_ERROR : MHD_CONTENT_READER_END_OF_STREAM;
    }
    std::optional<std::size_t> count;
    if (exchange.file) {
      count = exchange.file->read(buffer, size);
    } else if (exchange.stream) {
      count = exchange.stream->read(buffer, size);
    }
    if (count == 0) {
      exchange.engine->suspend(exchange);
    }
    return count ? static_cast<ssize_t>(*count) : MHD_CONTENT_READER_END_OF_STREAM;
  }

  static void completed(
      void* self, MHD_Connection* connection, void** state, MHD_RequestTerminationCode /*why*/) {
    auto& engine = *static_cast<Engine*>(self);
    const std::unique_ptr<Exchange> exchange(static_cast<Exchange*>(*state));
    *state = nullptr;
    if (exchange) {
      std::erase(engine.streams_, exchange.get());
      std::erase(engine.suspended_, exchange.get());
      engine.awaitRequest(connection);
    }
  }

  static void connectionChanged(
      void* self,
      MHD_Connection* connection,
      void** /*context*/,
      MHD_ConnectionNotificationCode what) {
    auto& engine = *static_cast<Engine*>(self);
    if (what == MHD_CONNECTION_NOTIFY_STARTED) {
      engine.awaitRequest(connection);
      if (const auto oldest = engine.timers_.takeOldestBeyond(engine.limits_.otherConnections)) {
        hangUp(*oldest);
      }
    } else {
      engine.timers_.stop(descriptorOf(connection));
    }
  }

  void awaitRequest(MHD_Connection* connection) {
    timers_.start(descriptorOf(connection), Clock::now() + limits_.requestTime);
  }

  static void hangUp(int connection) { ::shutdown(connection, SHUT_RDWR); }

  std::size_t waitingAnswers() const {
    return static_cast<std::size_t>(std::ranges::count_if(
        suspended_, [](const Exchange* exchange) { return exchange->later != nullptr; }));
  }

  void suspend(Exchange& exchange) {
    suspended_.push_back(&exchange);
    MHD_suspend_connection(exchange.connection);
  }

  void resume(Exchange& exchange) {
    std::erase(suspended_, &exchange);
    MHD_resume_connection(exchange.connection);
  }

  Limits limits_;
  Handler handler_;
  LoopbackListener listener_;
  RequestPolicy policy_;
  MHD_Daemon* daemon_ = nullptr;
  ConnectionTimers
      timers_;  // of the connections that a request or the taking of an answer is awaited from
  std::vector<Exchange*> streams_;
  std::vector<Exchange*> suspended_;
  Clock::time_point nextHeartbeat_ = Clock::now() + limits_.heartbeat;
  bool ending_ = false;
};

std::expected<WebServer, std::string> WebServer::start(
    std::uint16_t port, Limits limits, Handler handler) {
  const auto failed = [&](const std::error_code& error) {
    return std::unexpected(
        "cannot listen on port " + std::to_string(port) + ": " +
        (error == std::errc::address_in_use
             ? "another program uses it; choose another one with --port"
             : error.message()));
  };
  const std::uint64_t descriptors = allowDescriptors(maxConnections + otherDescriptors);
  const std::uint64_t reserve = std::min<std::uint64_t>(otherDescriptors, descriptors / 2);
  const auto connections =
      static_cast<unsigned>(std::min<std::uint64_t>(maxConnections, descriptors - reserve));
  limits.streams = std::min<std::size_t>(limits.streams, connections / 4);
  limits.otherConnections = std::min<std::size_t>(limits.otherConnections, connections / 4);
  auto listener = LoopbackListener::open(port);
  if (!listener) {
    return failed(listener.error());
  }
  auto engine =
      std::make_unique<Engine>(std::move(*listener), connections, limits, std::move(handler));
  if (!engine->started()) {
    return failed({errno, std::generic_category()});
  }
  return WebServer(std::move(engine));
}

WebServer::WebServer(std::unique_ptr<Engine> engine) : engine_(std::move(engine)) {}
WebServer::~WebServer() = default;
WebServer::WebServer(WebServer&& other) noexcept = default;

std::uint16_t WebServer::port() const { return engine_->port(); }
int WebServer::descriptor() const { return engine_->descriptor(); }
std::chrono::milliseconds WebServer::pollTimeout() const { return engine_->pollTimeout(); }
void WebServer::run() { engine_->run(); }
void WebServer::wake() { engine_->wake(); }

}  // namespace quillpad::home
