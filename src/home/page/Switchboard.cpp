#include "home/page/Switchboard.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <mutex>
#include <sys/eventfd.h>
#include <utility>
#include <vector>

#include "home/page/PageFiles.h"
#include "home/page/Select.h"
#include "platform/foundation/Decoder.h"
#include "platform/foundation/Json.h"
#include "platform/os/FileDescriptor.h"
#include "platform/os/WholeFile.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

constexpr auto timeout = 5s;
constexpr int maxUnderWay = 8;
constexpr std::size_t maxFileBytes = 4096;
constexpr std::size_t maxFaults = 100;
constexpr std::size_t maxFaultBytes = 200;
constexpr double maxDelay = 600;  // seconds

// What a switchboard reports of itself.
struct Faults {
  std::string inForce;
  std::int64_t delay = 0;  // in milliseconds
  std::vector<std::string> offered;
};

std::expected<Faults, std::string> faultsFrom(std::string_view text) {
  const auto document = readJson(text, JsonFragments::refused);
  if (!document) {
    return std::unexpected(document.error().reason);
  }
  const Decoder d(*document);
  Faults faults{
      .inForce = d["fault"].text(), .delay = d["delay"].whole<std::int64_t>(0), .offered = {}};
  for (const Decoder& fault : d["faults"].elements(maxFaults)) {
    faults.offered.push_back(fault.text().substr(0, maxFaultBytes));
  }
  return d.result(std::move(faults));
}

// The faults that every switchboard may know have words, others are called by their items.
std::string wordsOf(std::string_view fault, const Language& language) {
  constexpr std::string_view status = "status=";
  constexpr std::string_view shape = "shape=";
  if (fault.contains(',')) {
    return std::string(fault);
  }
  if (fault == "off") {
    return language.text("No fault");
  }
  if (fault == "drop") {
    return language.text("Dropped connection");
  }
  if (fault == "truncate") {
    return language.text("Answer cut in the middle");
  }
  if (fault == "not-json") {
    return language.text("A web page instead of JSON");
  }
  if (fault.starts_with(status)) {
    return language.text("Status {1}", {fault.substr(status.size())});
  }
  return fault.starts_with(shape) ? language.text("Damaged body: {1}", {fault.substr(shape.size())})
                                  : std::string(fault);
}

std::string secondsText(std::int64_t milliseconds) {
  std::array<char, 32> text{};
  const double seconds = static_cast<double>(milliseconds) / 1000;
  return {text.data(), std::to_chars(text.begin(), text.end(), seconds).ptr};
}

WebAnswer formAnswer(const Faults& faults, const PageFrame& frame) {
  Select select(faults.inForce);
  bool isOffered = false;
  for (const std::string& fault : faults.offered) {
    isOffered = isOffered || fault == faults.inForce;
    select.add(fault, wordsOf(fault, frame.language));
  }
  if (!isOffered) {
    select.add(faults.inForce, wordsOf(faults.inForce, frame.language));
  }
  return htmlAnswer(filled(
      page::switchboardFormHtml,
      {{"faults", select.markup()}, {"delay", escaped(secondsText(faults.delay))}},
      frame.language));
}

// The transport's sentences are among the catalogues' texts.
WebAnswer noAnswer(std::string_view reason, const Language& language) {
  return {
      .status = 502,
      .body = language.text("The switchboard does not answer: {1}", {language.text(reason)})};
}

WebAnswer answerFrom(
    const std::expected<HttpsAnswer, std::string>& answer, const PageFrame& frame) {
  if (!answer) {
    return noAnswer(answer.error(), frame.language);
  }
  const auto faults = answer->status == 200
                          ? faultsFrom(answer->body)
                          : std::unexpected("status " + std::to_string(answer->status));
  return faults ? formAnswer(*faults, frame) : noAnswer(faults.error(), frame.language);
}

std::optional<double> secondsFrom(std::string_view text) {
  double seconds = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(end - text.size(), end, seconds);
  const bool isRead = error == std::errc() && stop == end;
  return isRead && seconds >= 0 && seconds <= maxDelay ? std::optional(seconds) : std::nullopt;
}

}  // namespace

// What is shared with the thread that the answers come on.
struct Switchboard::Shared {
  struct Reply {
    std::optional<std::expected<HttpsAnswer, std::string>> answer;
  };

  std::mutex mutex;
  int underWay = 0;
  FileDescriptor came{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
};

std::expected<std::unique_ptr<Switchboard>, std::string> Switchboard::open(
    const std::filesystem::path& file, AskOverHttps ask) {
  if (const auto access = read(file); !access) {
    return std::unexpected(access.error());
  }
  return std::unique_ptr<Switchboard>(new Switchboard(file, std::move(ask)));
}

Switchboard::Switchboard(std::filesystem::path file, AskOverHttps ask)
    : file_(std::move(file)), ask_(std::move(ask)), shared_(std::make_shared<Shared>()) {}

std::expected<Switchboard::Access, std::string> Switchboard::read(
    const std::filesystem::path& file) {
  const auto text = readWholeFile(file, maxFileBytes);
  if (!text) {
    return std::unexpected(
        "the switchboard's file " + file.string() + " cannot be read (" + text.error().message() +
        "); what serves the figures writes it when it starts");
  }
  const auto document = readJson(*text, JsonFragments::refused);
  if (!document) {
    return std::unexpected(file.string() + " is no switchboard's file: it holds no JSON");
  }
  const Decoder d(*document);
  Access access{.address = d["address"].text(), .token = d["token"].text()};
  if (!d.error().empty()) {
    return std::unexpected(file.string() + " is no switchboard's file: " + d.error());
  }
  return access;
}

WebReply Switchboard::form(const Moment& now, const PageFrame& frame) {
  return ask(now, "GET", "", frame);
}

WebReply Switchboard::change(const Moment& now, const WebRequest& request, const PageFrame& frame) {
  const std::string_view fault = request.parameter("fault");
  const auto seconds = secondsFrom(request.parameter("delay"));
  if (fault.empty() || fault.size() > maxFaultBytes || !seconds) {
    return WebAnswer{
        .status = 400, .body = "A change takes a fault, and a delay of 0 to 600 seconds.\n"};
  }
  const std::string delay = std::to_string(std::lround(*seconds * 1000));
  return ask(now, "POST", std::string(fault) + ",delay=" + delay, frame);
}

WebReply Switchboard::ask(
    const Moment& now, std::string_view method, std::string body, const PageFrame& frame) {
  auto access = read(file_);
  if (!access) {
    return noAnswer(access.error(), frame.language);
  }
  {
    const std::lock_guard lock(shared_->mutex);
    if (shared_->underWay >= maxUnderWay) {
      return WebAnswer{.status = 503, .body = "The switchboard is busy. Try again in a moment.\n"};
    }
    ++shared_->underWay;
  }
  const auto reply = std::make_shared<Shared::Reply>();
  ask_(
      {.method = std::string(method),
       .address = std::move(access->address),
       .authorization = std::move(access->token),
       .body = std::move(body)},
      [shared = shared_, reply](std::expected<HttpsAnswer, std::string> answer) {
        const std::lock_guard lock(shared->mutex);
        reply->answer = std::move(answer);
        --shared->underWay;
        ::eventfd_write(shared->came.get(), 1);
      });
  const auto take =
      [shared = shared_, reply, until = now.uptime + timeout, frame]() -> std::optional<WebAnswer> {
    const std::lock_guard lock(shared->mutex);
    if (reply->answer) {
      return answerFrom(*reply->answer, frame);
    }
    if (presentMoment().uptime < until) {
      return std::nullopt;
    }
    const std::string waited = std::to_string(std::chrono::seconds(timeout).count()) + " s";
    return noAnswer(frame.language.text("No answer came within {1}.", {waited}), frame.language);
  };
  return LaterAnswer{.take = take, .timeout = timeout};
}

pollfd Switchboard::descriptor() const { return {shared_->came.get(), POLLIN, 0}; }

bool Switchboard::run() {
  eventfd_t count = 0;
  return ::eventfd_read(shared_->came.get(), &count) == 0;
}

}  // namespace quillpad::home
