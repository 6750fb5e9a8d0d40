// An HTTP server on the loopback interface, driven by its owner's poll loop: nothing of it runs on
// another thread and nothing blocks. It takes requests that its RequestPolicy allows, without a
// body, and gives each answer the headers that keep a page to itself.
//
// Slow and hostile clients hurt no one else: a connection has a few seconds to get each request
// across and a bounded amount of memory to do so, and where too many wait to be heard the oldest of
// them goes first. What is made for a client that left is dropped.
#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <string>

#include "home/server/WebMessages.h"

namespace quillpad::home {

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

  // Listens on 127.0.0.1 at the port, at a free one for 0; on failure one line that says why.
  static std::expected<WebServer, std::string> start(
      std::uint16_t port, Limits limits, Handler handler);

  // Ends every connection.
  ~WebServer();
  WebServer(WebServer&& other) noexcept;
  WebServer& operator=(WebServer&&) = delete;

  std::uint16_t port() const;

  // What to poll for input, and for how long at most.
  int descriptor() const;
  std::chrono::milliseconds pollTimeout() const;

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
