// A session with one run of the extension: numbers the requests, keeps the deadlines and the memory
// limit, and reports what came of them. It ends the extension where it breaks a limit or is not to
// be understood. Driven by its owner's poll loop; nothing here blocks. Belongs to one thread, which
// must outlive the extension.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <map>
#include <optional>
#include <poll.h>
#include <string>
#include <variant>
#include <vector>

#include "home/extension/ExtensionProcess.h"
#include "home/extension/Moment.h"
#include "home/extension/Problem.h"
#include "platform/channel/Messages.h"

namespace quillpad::home {

// No answer to the request came in time, though the extension is alive; none will be reported.
struct LateAnswer {
  std::uint64_t id = 0;
  std::chrono::seconds waited{};
};

// Every request is followed by its reply or its LateAnswer, unless the session ends before; a
// Problem says why, and nothing follows it.
using SessionEvent =
    std::variant<channel::NumberedReply, TransferReport, PrintedLine, LateAnswer, Problem>;

class ExtensionSession {
 public:
  // What the phone grants a widget extension. The sanitizers need memory of their own beside it.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  static constexpr std::size_t defaultMemoryLimit = std::size_t{1024} * 1024 * 1024;
#else
  static constexpr std::size_t defaultMemoryLimit = std::size_t{30} * 1024 * 1024;
#endif

  // Starts the program; on failure one sentence for a person.
  static std::expected<ExtensionSession, std::string> start(
      const std::filesystem::path& program, std::size_t memoryLimit = defaultMemoryLimit);

  // How long an answer may take: 90 s for a timeline, which is longer than the extension itself
  // waits for the network, and 30 s for what is not fetched.
  static std::chrono::milliseconds timeFor(const channel::Request& request);

  // Sends the request, to be answered in the time allowed. Requests are numbered from 1.
  std::uint64_t ask(Uptime now, const channel::Request& request, std::chrono::milliseconds allowed);
  std::uint64_t ask(Uptime now, const channel::Request& request) {
    return ask(now, request, timeFor(request));
  }

  // What to wait for before the next poll; descriptors of no interest now are negative.
  std::array<pollfd, 4> descriptors() const { return process_.descriptors(); }
  std::optional<Uptime> nextDeadline() const;

  // What has happened since the last call, in order.
  std::vector<SessionEvent> poll(Uptime now);

  // Of the extension; 0 once it has ended.
  pid_t pid() const { return process_.pid(); }

  // Whether there is something to read that only another run would see.
  bool needsRestart() const { return process_.needsRestart(); }

 private:
  struct OpenRequest {
    channel::Method method{};
    Uptime sent{};
    Uptime deadline{};
    std::uint64_t end = 0;  // in all that is sent
  };

  ExtensionSession(ExtensionProcess process, std::size_t memoryLimit)
      : process_(std::move(process)), memoryLimit_(memoryLimit) {}
  void take(Uptime now, const channel::Line& line, std::vector<SessionEvent>& events);
  void takeReply(channel::NumberedReply reply, std::vector<SessionEvent>& events);
  void shareOut(std::size_t widgets);
  void giveUpLateAnswers(Uptime now, std::vector<SessionEvent>& events);
  void measureMemory(Uptime now);
  void end(Problem::Cause cause, std::string detail);

  ExtensionProcess process_;
  std::size_t memoryLimit_;
  std::size_t maxMessage_ = channel::maxFrame;
  std::uint64_t lastId_ = 0;
  std::map<std::uint64_t, OpenRequest> open_;
  Uptime lastHeard_ = Uptime::min();
  Uptime nextMeasurement_{};
  std::string lastWords_;
  std::optional<Problem> ending_;  // why it was killed, until its end is seen
};

}  // namespace quillpad::home
