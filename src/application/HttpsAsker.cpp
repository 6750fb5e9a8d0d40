#include "application/HttpsAsker.h"

#include <expected>
#include <optional>
#include <string>
#include <utility>

#include "platform/net/URLSession.h"

namespace quillpad::application {

home::AskOverHttps askOverHttps() {
  return [](home::HttpsQuestion question, auto done) {
    auto url = URL::parse(question.address);
    if (!url) {
      done(std::unexpected("the address is no URL"));
      return;
    }
    URLRequest request(*std::move(url));
    request.httpMethod = std::move(question.method);
    request.httpBody = std::move(question.body);
    request.setValue(std::move(question.authorization), "Authorization");
    URLSession::shared()
        .dataTask(
            std::move(request),
            [done = std::move(done)](
                std::optional<std::string> data,
                const std::optional<URLResponse>& response,
                const std::optional<TransportError>& error) mutable {
              if (error) {
                done(std::unexpected(error->localizedDescription));
                return;
              }
              done(home::HttpsAnswer{
                  .status = response ? response->statusCode : 0,
                  .body = std::move(data).value_or("")});
            })
        .resume();
  };
}

}  // namespace quillpad::application
