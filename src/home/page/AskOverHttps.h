// A question over HTTPS and its answer, for what asks without linking the network. Plain values.
#pragma once

#include <expected>
#include <functional>
#include <string>

namespace quillpad::home {

struct HttpsQuestion {
  std::string method;
  std::string address;
  std::string authorization;
  std::string body{};
};

struct HttpsAnswer {
  int status = 0;
  std::string body;
};

// How the program asks over the network, which the home screen does not link. The second argument
// is called once, on any thread, with the answer or one sentence that says why there is none.
using AskOverHttps = std::function<void(
    HttpsQuestion, std::move_only_function<void(std::expected<HttpsAnswer, std::string>)>)>;

}  // namespace quillpad::home
