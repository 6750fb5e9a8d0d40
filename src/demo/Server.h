// The demo gateway's HTTPS server on the loopback addresses: one thread per connection, at most 400
// of them, so that a delayed answer holds up nobody else. It refuses requests that name another
// host or come from a web page, and writes one line per request to standard output.
#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <string>

#include "demo/Certificate.h"
#include "demo/Gateway.h"

namespace quillpad::demo {

class Server {
 public:
  // Listens on the port, or on a free one for 0. On failure one sentence for a person.
  static std::expected<std::unique_ptr<Server>, std::string> start(
      std::uint16_t port, const Certificate& certificate, Gateway& gateway);

  // Ends every connection, answers that wait included.
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  std::uint16_t port() const;

 private:
  class Impl;
  explicit Server(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace quillpad::demo
