// An HTTP server on the loopback interface, driven by its owner's poll loop: nothing of it runs on
// another thread and nothing blocks. It takes requests only for its own address (no other Host, no
// other Origin), without a body, and gives each answer the headers that keep a page to itself.
//
// Slow and hostile clients hurt no one else: a connection has a few seconds to get each request
// across and a bounded amount of memory to do so, and where too many wait to be heard the oldest of
// them goes first.
#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

struct MHD_Connection;
struct MHD_Daemon;

namespace quillpad::home {

struct WebRequest {
  std::string method;
  std::string path;
  std::map<std::string, std::string, std::less<>> parameters;  // of the query, decoded
  std::string pageToken;                                       // the header X-Page-Token

  // Empty where there is no such parameter.
  std::string_view parameter(std::string_view name) const;
};

struct WebAnswer {
  int status = 200;
  std::string contentType = "text/plain; charset=utf-8";
  std::string body;
  std::vector<std::pair<std::string, std::string>> headers{};
};

// An answer that is still to come: asked for it after every change.
using LaterAnswer = std::function<std::optional<WebAnswer>()>;

// A stream of events without an end: asked after every change for what to send next, nothing for
// now where it is null.
using EventStream = std::function<std::shared_ptr<const std::string>()>;

using WebReply = std::variant<WebAnswer, LaterAnswer, EventStream>;

class WebServer {
 public:
  using Handler = std::function<WebReply(const WebRequest&)>;

  struct Limits {
    std::size_t streams = 512;
    std::size_t laterAnswers = 64;
    std::size_t otherConnections = 512;  // beyond it the one that is busy the longest goes
    std::chrono::milliseconds requestTime = std::chrono::seconds{10};  // to get a request across
    std::chrono::milliseconds answerTime = std::chrono::seconds{60};   // to take the answer
    std::chrono::milliseconds heartbeat = std::chrono::seconds{15};    // finds streams that left
  };

  // Listens on 127.0.0.1 at the port, at a free one for 0; on failure one line that tells why.
  static std::expected<WebServer, std::string> start(
      std::uint16_t port, Limits limits, Handler handler);

  // Ends every connection.
  ~WebServer();
  WebServer(WebServer&& other) noexcept;
  WebServer& operator=(WebServer&&) = delete;

  std::uint16_t port() const;

  // What to poll for input, and for how long at most.
  int descriptor() const;
  std::chrono::milliseconds patience() const;

  // Takes what has come, sends what can be sent. To be called after each poll.
  void run();

  // Something has changed: asks the waiting answers and streams for what to send.
  void wake();

 private:
  class Engine;
  explicit WebServer(std::unique_ptr<Engine> engine);
  std::unique_ptr<Engine> engine_;
};

}  // namespace quillpad::home
