#include "home/server/WebServer.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>
#include <utility>
#include <vector>

#include "home/server/ConnectionTimers.h"
#include "home/server/HttpMessages.h"
#include "home/server/LoopbackListener.h"
#include "home/server/Microhttpd.h"
#include "home/server/RequestPolicy.h"
#include "home/server/StreamReader.h"
#include "platform/foundation/Overloaded.h"

namespace quillpad::home {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr unsigned maxConnections = 2048;
constexpr unsigned otherDescriptors = 256;  // of the server and its program
constexpr unsigned stallSeconds = 15;       // a peer that takes nothing for so long is gone
constexpr std::size_t maxHeadBytes = std::size_t{48} * 1024;
constexpr std::size_t streamBlock = std::size_t{16} * 1024;

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
      if (std::holds_alternative<Pending>(exchange->state)) {
        exchange->state = plainAnswer(503, "The home screen is stopping.");
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
      deadline = std::min(deadline, timeoutOf(*exchange));
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return std::clamp(left, 0ms, timeout);
  }

  void run() {
    dropAbandoned();
    MHD_run(daemon_);
    const auto now = Clock::now();
    for (const int connection : timers_.takeExpired(now)) {
      hangUp(connection);
    }
    bool isDue = std::ranges::any_of(
        suspended_, [&](const Exchange* exchange) { return now >= timeoutOf(*exchange); });
    if (now >= nextHeartbeat_) {
      isDue = true;
      nextHeartbeat_ = now + limits_.heartbeat;
      for (Exchange* exchange : streams_) {
        if (auto* events = std::get_if<StreamReader>(&exchange->state)) {
          events->requestHeartbeat();
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
      if (canGoOn(*exchange, now)) {
        resume(*exchange);
      }
    }
    MHD_run(daemon_);
  }

 private:
  struct Arrived {};  // nobody has been asked for the answer

  // Suspended until there is an answer.
  struct Pending {
    std::function<std::optional<WebAnswer>()> take;
    Clock::time_point timeoutAt;
  };

  // One request and how far its answer is: not begun, still to come, there, or being streamed.
  struct Exchange {
    Engine* engine;
    MHD_Connection* connection;
    std::variant<Arrived, Pending, WebAnswer, StreamReader, FileReader> state{};
  };

  static Clock::time_point timeoutOf(const Exchange& exchange) {
    const auto* pending = std::get_if<Pending>(&exchange.state);
    return pending == nullptr ? Clock::time_point::max() : pending->timeoutAt;
  }

  // Whether a suspended exchange has something to send.
  static bool canGoOn(Exchange& exchange, Clock::time_point now) {
    return std::visit(
        Overloaded{
            [&](Pending& pending) {
              if (now >= pending.timeoutAt) {
                pending.timeoutAt = Clock::time_point::max();
              }
              if (auto answer = pending.take()) {
                exchange.state = *std::move(answer);
                return true;
              }
              return false;
            },
            [](StreamReader& events) { return events.hasMore(); },
            [](FileReader& file) { return file.hasMore(); },
            [](const auto&) { return false; }},
        exchange.state);
  }

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
      return refusal ? queueAnswer(connection, *refusal) : MHD_YES;
    }
    *bodySize = 0;
    auto& exchange = *static_cast<Exchange*>(*state);
    if (const auto* answer = std::get_if<WebAnswer>(&exchange.state)) {
      return engine.send(exchange, *answer);
    }
    return engine.begin(exchange, path, method);
  }

  MHD_Result begin(Exchange& exchange, const char* path, const char* method) {
    timers_.stop(descriptorOf(exchange.connection));
    if (const auto refusal = policy_.refusal(headOf(exchange.connection, path, method))) {
      return send(exchange, *refusal);
    }
    WebReply reply = handler_(requestOf(exchange.connection, path, method));
    return std::visit(
        Overloaded{
            [&](const WebAnswer& answer) { return send(exchange, answer); },
            [&](LaterAnswer& later) { return await(exchange, later); },
            [&](EventStream& events) {
              const WebAnswer head{.contentType = "text/event-stream; charset=utf-8", .body = ""};
              return stream(exchange, StreamReader(std::move(events)), head);
            },
            [&](FileStream& file) {
              const WebAnswer head{
                  .contentType = std::move(file.contentType),
                  .body = "",
                  .headers = std::move(file.headers)};
              return stream(exchange, FileReader(std::move(file.nextPiece)), head);
            }},
        reply);
  }

  MHD_Result send(Exchange& exchange, const WebAnswer& answer) {
    timers_.start(descriptorOf(exchange.connection), Clock::now() + limits_.answerTime);
    return queueAnswer(exchange.connection, answer);
  }

  MHD_Result await(Exchange& exchange, LaterAnswer& later) {
    if (const auto answer = later.take()) {
      return send(exchange, *answer);
    }
    if (waitingAnswers() >= limits_.laterAnswers) {
      return send(exchange, plainAnswer(503, "The home screen is busy. Try again in a moment."));
    }
    exchange.state = Pending{
        std::move(later.take),
        later.timeout ? Clock::now() + *later.timeout : Clock::time_point::max()};
    suspend(exchange);
    return MHD_YES;
  }

  // Sends the head, and what the reader has as long as it has some.
  template <class Reader>
  MHD_Result stream(Exchange& exchange, Reader reader, const WebAnswer& head) {
    if (streams_.size() >= limits_.streams) {
      return send(exchange, plainAnswer(503, "Too many tabs are open."));
    }
    exchange.state = std::move(reader);
    MHD_Response* response = MHD_create_response_from_callback(
        MHD_SIZE_UNKNOWN, streamBlock, &Engine::readStream, &exchange, nullptr);
    addHeaders(response, head);
    const MHD_Result queued = MHD_queue_response(exchange.connection, MHD_HTTP_OK, response);
    MHD_destroy_response(response);
    if (queued == MHD_YES) {
      streams_.push_back(&exchange);
    }
    return queued;
  }

  static ssize_t readStream(void* cls, std::uint64_t /*position*/, char* buffer, std::size_t size) {
    auto& exchange = *static_cast<Exchange*>(cls);
    auto* file = std::get_if<FileReader>(&exchange.state);
    if (exchange.engine->ending_) {
      return file != nullptr ? MHD_CONTENT_READER_END_WITH_ERROR : MHD_CONTENT_READER_END_OF_STREAM;
    }
    const std::optional<std::size_t> count =
        file != nullptr ? file->read(buffer, size)
                        : std::get_if<StreamReader>(&exchange.state)->read(buffer, size);
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

  // What is made for a client that left is made no more. Nothing is read of a suspended connection,
  // so its end goes unnoticed otherwise.
  void dropAbandoned() {
    for (Exchange* exchange : std::vector(suspended_)) {
      const bool isPending = std::holds_alternative<Pending>(exchange->state);
      const bool isFile = std::holds_alternative<FileReader>(exchange->state);
      pollfd peer{descriptorOf(exchange->connection), POLLRDHUP, 0};
      if ((isPending || isFile) && ::poll(&peer, 1, 0) > 0) {
        if (isPending) {
          exchange->state = plainAnswer(503, "Nobody waits for this any more.");
        } else {
          exchange->state = FileReader([] { return std::optional<std::string>(""); });
        }
        resume(*exchange);
      }
    }
  }

  std::size_t waitingAnswers() const {
    return static_cast<std::size_t>(std::ranges::count_if(suspended_, [](const Exchange* exchange) {
      return std::holds_alternative<Pending>(exchange->state);
    }));
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
  ConnectionTimers timers_;  // of connections that owe a request or have an answer to take
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
