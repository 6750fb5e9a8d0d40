#include "home/extension/ExtensionSession.h"

#include <algorithm>
#include <utility>

#include "home/extension/MemoryUse.h"
#include "platform/foundation/NumberText.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

constexpr auto measurementPause = 100ms;

// Of what is kept of each widget for as long as it is shown, all together. While it is saved it
// takes ten times as much.
constexpr std::size_t maxMessages = 2 * channel::maxFrame;

}  // namespace

std::expected<ExtensionSession, std::string> ExtensionSession::start(
    const std::filesystem::path& program, std::size_t memoryLimit) {
  auto process = ExtensionProcess::start(program);
  if (!process) {
    return std::unexpected(process.error());
  }
  return ExtensionSession(std::move(*process), memoryLimit);
}

std::chrono::milliseconds ExtensionSession::timeFor(const channel::Request& request) {
  return std::holds_alternative<channel::TimelineRequest>(request) ? 90s : 30s;
}

std::uint64_t ExtensionSession::ask(
    Uptime now, const channel::Request& request, std::chrono::milliseconds allowed) {
  if (open_.empty()) {
    lastWords_.clear();  // they belong to what was asked before
  }
  const std::uint64_t id = ++lastId_;
  const std::uint64_t end = process_.send(channel::encode(channel::NumberedRequest{id, request}));
  open_.emplace(
      id,
      OpenRequest{
          .method = channel::methodOf(request),
          .sent = now,
          .deadline = now + allowed,
          .end = end});
  return id;
}

std::optional<Uptime> ExtensionSession::nextDeadline() const {
  if (open_.empty() || ending_) {
    return std::nullopt;
  }
  Uptime earliest = nextMeasurement_;
  for (const auto& [id, request] : open_) {
    earliest = std::min(earliest, request.deadline);
  }
  return earliest;
}

std::vector<SessionEvent> ExtensionSession::poll(Uptime now) {
  std::vector<SessionEvent> events;
  ExtensionProcess::Arrivals arrivals = process_.take();
  for (PrintedLine& line : arrivals.printed) {
    if (line.stream == PrintedLine::Stream::error) {
      lastWords_ = line.text;
    }
    events.emplace_back(std::move(line));
  }
  for (const channel::Line& line : arrivals.messages) {
    take(now, line, events);
  }
  if (arrivals.end) {
    open_.clear();
    events.emplace_back(
        ending_ ? std::move(*ending_)
                : Problem{Problem::Cause::ended, arrivals.end->manner(), lastWords_});
    return events;
  }
  giveUpLateAnswers(now, events);
  measureMemory(now);
  return events;
}

void ExtensionSession::take(
    Uptime now, const channel::Line& line, std::vector<SessionEvent>& events) {
  if (ending_) {
    return;
  }
  if (line.tooLong || line.text.size() > maxMessage_) {
    return end(Problem::Cause::protocolError, "a message of more than " + bytesText(maxMessage_));
  }
  auto message = channel::decodeFromExtension(
      line.text, [this](std::uint64_t id) -> std::optional<channel::Method> {
        const auto request = open_.find(id);
        return request == open_.end() ? std::nullopt : std::optional(request->second.method);
      });
  if (!message) {
    return end(Problem::Cause::protocolError, printableText(message.error()));
  }
  lastHeard_ = now;
  if (auto* transfer = std::get_if<TransferReport>(&*message)) {
    events.emplace_back(std::move(*transfer));
  } else if (auto* reply = std::get_if<channel::NumberedReply>(&*message)) {
    takeReply(std::move(*reply), events);
  }
}

// A refusal without a number can only be meant for the one request that is open. Who reads nothing
// and guesses the numbers is asked no more: what it leaves unread would be kept for ever.
void ExtensionSession::takeReply(channel::NumberedReply reply, std::vector<SessionEvent>& events) {
  const auto request = open_.find(reply.id.value_or(0));
  if (request != open_.end() && request->second.end > process_.sentBytes()) {
    return end(Problem::Cause::protocolError, "the answer to a request that it had not read");
  }
  if (!reply.id && open_.size() == 1) {
    reply.id = open_.begin()->first;
  }
  if (const auto* catalogue = std::get_if<channel::Catalogue>(&reply.reply)) {
    shareOut(catalogue->items.size());
  }
  if (reply.id && open_.erase(*reply.id) > 0) {
    events.emplace_back(std::move(reply));
  }
}

void ExtensionSession::shareOut(std::size_t widgets) {
  maxMessage_ = std::min(channel::maxFrame, maxMessages / std::max<std::size_t>(widgets, 1));
}

void ExtensionSession::giveUpLateAnswers(Uptime now, std::vector<SessionEvent>& events) {
  for (auto request = open_.begin(); request != open_.end() && !ending_;) {
    const auto& [id, times] = *request;
    if (now < times.deadline) {
      ++request;
      continue;
    }
    const auto waited = std::chrono::ceil<std::chrono::seconds>(times.deadline - times.sent);
    if (lastHeard_ <= times.sent) {  // not a word since: it hangs
      end(Problem::Cause::late, std::to_string(waited.count()) + " seconds");
    } else {
      events.emplace_back(LateAnswer{id, waited});
      request = open_.erase(request);
    }
  }
}

void ExtensionSession::measureMemory(Uptime now) {
  if (open_.empty() || ending_ || now < nextMeasurement_) {
    return;
  }
  nextMeasurement_ = now + measurementPause;
  if (const std::size_t used = privateMemory(process_.pid()); used > memoryLimit_) {
    end(Problem::Cause::overMemory,
        "it used " + bytesText(used) + ", the limit is " + bytesText(memoryLimit_));
  }
}

void ExtensionSession::end(Problem::Cause cause, std::string detail) {
  ending_ = Problem{.cause = cause, .detail = std::move(detail)};
  process_.kill();
}

}  // namespace quillpad::home
