// What the web server is asked and what it is answered with. Plain values.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace quillpad::home {

struct WebRequest {
  std::string method;
  std::string path;
  std::map<std::string, std::string, std::less<>> parameters{};  // of the query, decoded
  std::map<std::string, std::string, std::less<>> cookies{};
  std::string pageToken{};       // the header X-Page-Token
  std::string acceptLanguage{};  // the header Accept-Language

  // Empty where there is no such parameter.
  std::string_view parameter(std::string_view name) const {
    const auto found = parameters.find(name);
    return found == parameters.end() ? std::string_view() : std::string_view(found->second);
  }
};

struct WebAnswer {
  int status = 200;
  std::string contentType = "text/plain; charset=utf-8";
  std::string body;
  std::vector<std::pair<std::string, std::string>> headers{};
};

// An answer that is still to come: asked for after every change, and once its timeout is over even
// if nothing changes.
struct LaterAnswer {
  std::function<std::optional<WebAnswer>()> take;
  std::optional<std::chrono::milliseconds> timeout{};
};

// A stream of events without an end: asked after every change for what to send next, nothing for
// now where it is null.
using EventStream = std::function<std::shared_ptr<const std::string>()>;

// A file that is made while it is sent: asked for its next piece after every change and whenever
// the last one was sent; nothing for now, an empty piece at its end.
struct FileStream {
  std::string contentType;
  std::vector<std::pair<std::string, std::string>> headers{};
  std::function<std::optional<std::string>()> nextPiece;
};

using WebReply = std::variant<WebAnswer, LaterAnswer, EventStream, FileStream>;

}  // namespace quillpad::home
