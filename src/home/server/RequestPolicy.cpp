#include "home/server/RequestPolicy.h"

#include <algorithm>

namespace quillpad::home {

RequestPolicy::RequestPolicy(std::uint16_t port) {
  for (const std::string name : {"127.0.0.1", "localhost"}) {
    hosts_.push_back(name + ":" + std::to_string(port));
    if (port == 80) {  // which browsers leave out
      hosts_.push_back(name);
    }
  }
}

std::optional<WebAnswer> RequestPolicy::refusalOfBody(const RequestHead& head) {
  const bool noBody = head.contentLength.empty() || head.contentLength == "0";
  if (noBody && head.transferEncoding.empty()) {
    return std::nullopt;
  }
  return plainAnswer(413, "A request here has no body.");
}

std::optional<WebAnswer> RequestPolicy::refusal(const RequestHead& head) const {
  if (std::ranges::find(hosts_, head.host) == hosts_.end()) {
    return plainAnswer(
        421, "This is the home screen at http://" + hosts_.front() + "/ and nothing else.");
  }
  const bool ownOrigin =
      head.origin.empty() || std::ranges::any_of(hosts_, [&](const std::string& host) {
        return head.origin == "http://" + host;
      });
  const bool ownSite =
      head.fetchSite.empty() || head.fetchSite == "same-origin" || head.fetchSite == "none";
  const bool linkToHome = head.method == "GET" && head.path == "/" && !head.hasQuery &&
                          head.fetchMode == "navigate" && head.fetchDest == "document";
  if (!ownOrigin || (!ownSite && !linkToHome)) {
    return plainAnswer(403, "Only the home screen's own page may ask for this.");
  }
  if (head.method != "GET" && head.method != "HEAD" && head.method != "POST") {
    WebAnswer answer = plainAnswer(405, "The method is not known here.");
    answer.headers.emplace_back("Allow", "GET, HEAD, POST");
    return answer;
  }
  return std::nullopt;
}

WebAnswer plainAnswer(int status, std::string text) {
  return {.status = status, .body = std::move(text) + "\n"};
}

}  // namespace quillpad::home
