// A switchboard that the home screen was told of: a place elsewhere, asked over HTTPS, where faults
// of what the extension talks to are switched by who tries out what then shows. Its file holds its
// address and its token, which no page sees, and is read again for each question. Answers come on
// another thread and are taken up in the owner's poll loop; belongs to the thread that made it.
#pragma once

#include <chrono>
#include <expected>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <string_view>

#include "home/extension/Moment.h"
#include "home/page/AskOverHttps.h"
#include "home/page/Page.h"
#include "home/server/WebMessages.h"

namespace quillpad::home {

class Switchboard {
 public:
  // On failure one line that says what is wrong with the file.
  static std::expected<std::unique_ptr<Switchboard>, std::string> open(
      const std::filesystem::path& file, AskOverHttps ask);

  // The form with the faults on offer and the one in force, or why there is none.
  WebReply form(const Moment& now, const PageFrame& frame);

  // The same after "fault" and "delay", in seconds, of the request were switched.
  WebReply change(const Moment& now, const WebRequest& request, const PageFrame& frame);

  // What to poll for.
  pollfd descriptor() const;

  // Takes what has come. True where an answer to come may be there now.
  bool run();

 private:
  struct Shared;
  struct Access {
    std::string address;
    std::string token;
  };

  Switchboard(std::filesystem::path file, AskOverHttps ask);
  static std::expected<Access, std::string> read(const std::filesystem::path& file);
  WebReply ask(
      const Moment& now, std::string_view method, std::string body, const PageFrame& frame);

  std::filesystem::path file_;
  AskOverHttps ask_;
  std::shared_ptr<Shared> shared_;
};

}  // namespace quillpad::home
