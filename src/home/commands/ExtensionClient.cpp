#include "home/commands/ExtensionClient.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <poll.h>

namespace quillpad::home {
namespace {

using Answer = ExtensionClient::Answer;

// Waits until something has come or is due.
void wait(const ExtensionSession& session) {
  auto descriptors = session.descriptors();
  std::chrono::milliseconds left{-1};
  if (const auto deadline = session.nextDeadline()) {
    left = std::max(*deadline - presentMoment().uptime, std::chrono::milliseconds{0});
  }
  ::poll(descriptors.data(), descriptors.size(), static_cast<int>(left.count()));
}

Answer meaningOf(channel::Reply reply) {
  if (const auto* refusal = std::get_if<channel::Refused>(&reply)) {
    const bool wrongUsage = refusal->code == channel::invalidParams;
    return failure(
        wrongUsage ? ExitStatus::wrongUsage : ExitStatus::notPossible,
        wrongUsage ? refusal->message : "the extension refused the request: " + refusal->message);
  }
  if (const auto* dropped = std::get_if<channel::Dropped>(&reply)) {
    return failure(
        ExitStatus::dropped,
        "the extension dropped the request, so there is no answer" +
            (dropped->reason.empty() ? "." : ": " + dropped->reason));
  }
  return reply;
}

Failure late(const std::string& waited) {
  return {
      ExitStatus::notPossible,
      "the extension has not answered within " + waited + " and was stopped; try again"};
}

Failure meaningOf(const Problem& end) {
  switch (end.cause) {
    case Problem::Cause::late:
      return late(end.detail);
    case Problem::Cause::protocolError:
      return {ExitStatus::notPossible, "the extension sent " + end.detail};
    case Problem::Cause::overMemory:
      return {ExitStatus::extensionEnded, "the extension was ended: " + end.detail};
    default:
      break;
  }
  return {
      ExitStatus::extensionEnded,
      "the extension ended (" + end.detail + ")" +
          (end.lastWords.empty() ? " without a word" : ": " + end.lastWords)};
}

}  // namespace

std::expected<ExtensionClient, Failure> ExtensionClient::start(
    const std::filesystem::path& program, std::size_t memoryLimit) {
  auto session = ExtensionSession::start(program, memoryLimit);
  if (!session) {
    return failure(ExitStatus::notPossible, session.error());
  }
  return ExtensionClient(std::move(*session));
}

Answer ExtensionClient::answerTo(
    const channel::Request& request, std::optional<std::chrono::milliseconds> allowed) {
  auto answer = std::move(answersTo({&request, 1}, allowed).front());
  return answer ? *std::move(answer) : std::unexpected(over_.value_or(Failure{}));
}

std::vector<std::optional<Answer>> ExtensionClient::answersTo(
    std::span<const channel::Request> requests, std::optional<std::chrono::milliseconds> allowed) {
  std::map<std::uint64_t, std::size_t> places;
  for (const channel::Request& request : requests) {
    const auto time = allowed.value_or(ExtensionSession::timeFor(request));
    places.emplace(session_.ask(presentMoment().uptime, request, time), places.size());
  }
  std::vector<std::optional<Answer>> answers(requests.size());
  while (!places.empty() && !over_) {
    wait(session_);
    for (SessionEvent& event : session_.poll(presentMoment().uptime)) {
      if (auto* reply = std::get_if<channel::NumberedReply>(&event)) {
        if (const auto place = places.extract(reply->id.value_or(0)); !place.empty()) {
          answers[place.mapped()] = meaningOf(std::move(reply->reply));
        }
      } else if (const auto* transfer = std::get_if<TransferReport>(&event)) {
        transfers_.push_back(*transfer);
      } else if (auto* line = std::get_if<PrintedLine>(&event)) {
        relay(std::move(*line));
      } else if (const auto* end = std::get_if<Problem>(&event)) {
        over_ = meaningOf(*end);
        if (!places.empty() && !end->lastWords.empty()) {
          heldLine_.reset();
        }
      } else if (const auto* answer = std::get_if<LateAnswer>(&event)) {
        over_ = late(std::to_string(answer->waited.count()) + " seconds");
      }
    }
  }
  relayHeldLine();
  return answers;
}

void ExtensionClient::relay(PrintedLine line) {
  if (line.stream == PrintedLine::Stream::error) {
    relayHeldLine();
    heldLine_ = std::move(line.text);
  } else {
    std::fprintf(stderr, "%s\n", line.text.c_str());
  }
}

void ExtensionClient::relayHeldLine() {
  if (heldLine_) {
    std::fprintf(stderr, "%s\n", heldLine_->c_str());
    heldLine_.reset();
  }
}

}  // namespace quillpad::home
