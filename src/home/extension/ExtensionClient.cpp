#include "home/extension/ExtensionClient.h"

#include <algorithm>
#include <cstdio>
#include <poll.h>

namespace quillpad::home {
namespace {

using Clock = std::chrono::steady_clock;
using Answer = std::expected<channel::Reply, Failure>;

void relay(const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); }

// Waits until something has come, or the time is up.
bool wait(const ExtensionProcess& process, Clock::time_point deadline) {
  auto descriptors = process.descriptors();
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
  if (left.count() <= 0) {
    return false;
  }
  ::poll(descriptors.data(), descriptors.size(), static_cast<int>(left.count()));
  return true;
}

Answer refused(const channel::Refused& refusal) {
  const bool wrongUsage = refusal.code == channel::invalidParams;
  return failure(
      wrongUsage ? ExitStatus::wrongUsage : ExitStatus::notPossible,
      wrongUsage ? refusal.message : "the extension refused the request: " + refusal.message);
}

Answer dropped() {
  return failure(
      ExitStatus::dropped,
      "the extension dropped the request, so there is no timeline: the business identifier or the "
      "token is empty; \"quillpad-home settings sign-in\" sets both");
}

}  // namespace

std::expected<ExtensionClient, Failure> ExtensionClient::start(
    const std::filesystem::path& program) {
  auto process = ExtensionProcess::start(program);
  if (!process) {
    return failure(ExitStatus::notPossible, process.error());
  }
  return ExtensionClient(std::move(*process));
}

std::chrono::seconds ExtensionClient::deadline(const channel::Request& request) {
  return std::chrono::seconds(std::holds_alternative<channel::TimelineRequest>(request) ? 90 : 30);
}

Answer ExtensionClient::answerTo(
    const channel::Request& request, std::chrono::milliseconds allowed) {
  const std::uint64_t id = process_.send(request);
  const auto end = Clock::now() + allowed;
  while (wait(process_, end)) {
    std::optional<Answer> answer;
    for (ExtensionEvent& event : process_.takeEvents()) {
      if (auto result = consider(id, event); result && !answer) {
        answer = std::move(result);
      }
    }
    if (answer) {
      relayHeldLine();
      return std::move(*answer);
    }
  }
  relayHeldLine();
  process_.kill();
  return failure(
      ExitStatus::notPossible,
      "the extension has not answered within " +
          std::to_string(std::chrono::ceil<std::chrono::seconds>(allowed).count()) +
          " s and was stopped; try again");
}

std::optional<Answer> ExtensionClient::consider(std::uint64_t id, ExtensionEvent& event) {
  if (auto* reply = std::get_if<channel::NumberedReply>(&event)) {
    if (reply->id.value_or(id) != id) {
      return std::nullopt;
    }
    if (const auto* refusal = std::get_if<channel::Refused>(&reply->reply)) {
      return refused(*refusal);
    }
    if (std::holds_alternative<channel::Dropped>(reply->reply)) {
      return dropped();
    }
    return std::move(reply->reply);
  }
  if (const auto* notice = std::get_if<channel::TransferNotice>(&event)) {
    transfers_.push_back(notice->report);
  } else if (const auto* line = std::get_if<PrintedLine>(&event)) {
    if (line->stream == PrintedLine::Stream::output) {
      relay(line->text);
    } else {
      relayHeldLine();
      heldLine_ = line->text;
    }
  } else if (const auto* garbage = std::get_if<Garbage>(&event)) {
    process_.kill();
    return failure(ExitStatus::notPossible, "the extension sent " + garbage->reason);
  } else {
    return ended(std::get<ExtensionEnd>(event));
  }
  return std::nullopt;
}

Answer ExtensionClient::ended(const ExtensionEnd& end) {
  heldLine_.reset();
  return failure(
      ExitStatus::extensionEnded,
      "the extension ended (" + end.manner() + ")" +
          (end.lastWords.empty() ? " without a word" : ": " + end.lastWords));
}

void ExtensionClient::relayHeldLine() {
  if (heldLine_) {
    relay(*heldLine_);
    heldLine_.reset();
  }
}

}  // namespace quillpad::home
