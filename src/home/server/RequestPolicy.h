// Which requests are taken at all. A page of another place must not reach the home screen through
// the browser: not under a name that its own server resolves to this machine, and not with a
// request of its own making. All that it may do is to link to the home screen as such. Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "home/server/WebMessages.h"

namespace quillpad::home {

// The part of a request's head that decides; empty where the header is missing.
struct RequestHead {
  std::string_view method{};
  std::string_view path{};
  bool hasQuery = false;  // of more than the key
  std::string_view host{};
  std::string_view origin{};
  std::string_view fetchSite{};  // Sec-Fetch-Site
  std::string_view fetchMode{};  // Sec-Fetch-Mode
  std::string_view fetchDest{};  // Sec-Fetch-Dest
  std::string_view contentLength{};
  std::string_view transferEncoding{};
};

class RequestPolicy {
 public:
  // Of a server that listens on the port of 127.0.0.1.
  explicit RequestPolicy(std::uint16_t port);

  // The answer to a request that has a body: it comes before the body does.
  static std::optional<WebAnswer> refusalOfBody(const RequestHead& head);

  // The answer to a request that is not for this server's own page; nothing where it is.
  std::optional<WebAnswer> refusal(const RequestHead& head) const;

 private:
  std::vector<std::string> hosts_;
};

// One line of plain text.
WebAnswer plainAnswer(int status, std::string text);

}  // namespace quillpad::home
