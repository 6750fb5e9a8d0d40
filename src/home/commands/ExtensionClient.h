// Asks an extension and waits for its answer, for commands that ask and leave. What the extension
// prints meanwhile goes to standard error. Belongs to one thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <expected>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "home/commands/Failure.h"
#include "home/extension/ExtensionSession.h"
#include "platform/channel/Messages.h"
#include "platform/foundation/TransferReport.h"

namespace quillpad::home {

class ExtensionClient {
 public:
  static std::expected<ExtensionClient, Failure> start(
      const std::filesystem::path& program,
      std::size_t memoryLimit = ExtensionSession::defaultMemoryLimit);

  // A reply, a refusal and a drop being failures.
  using Answer = std::expected<channel::Reply, Failure>;

  // The answer, where it is of the type expected.
  template <class Expected>
  static std::expected<Expected, Failure> as(Answer answer) {
    if (!answer) {
      return std::unexpected(std::move(answer.error()));
    }
    if (auto* expected = std::get_if<Expected>(&*answer)) {
      return std::move(*expected);
    }
    return failure(ExitStatus::notPossible, "the extension answered something else than was asked");
  }

  // The answer to the request. After a failure nothing more can be asked.
  Answer answerTo(
      const channel::Request& request,
      std::optional<std::chrono::milliseconds> allowed = std::nullopt);

  // The same, of the type expected.
  template <class Expected>
  std::expected<Expected, Failure> ask(
      const channel::Request& request,
      std::optional<std::chrono::milliseconds> allowed = std::nullopt) {
    return as<Expected>(answerTo(request, allowed));
  }

  // The answers to all of the requests, which are under way together; those that did not come until
  // the extension ended are empty. Each may take the time allowed, or its usual one.
  std::vector<std::optional<Answer>> answersTo(
      std::span<const channel::Request> requests,
      std::optional<std::chrono::milliseconds> allowed = std::nullopt);

  // Why nothing more can be asked, once that is so.
  const std::optional<Failure>& over() const { return over_; }

  // How the network transfers ended that the extension has reported so far.
  const std::vector<TransferReport>& transfers() const { return transfers_; }

 private:
  explicit ExtensionClient(ExtensionSession session) : session_(std::move(session)) {}
  void relay(PrintedLine line);
  void relayHeldLine();

  ExtensionSession session_;
  std::vector<TransferReport> transfers_;
  std::optional<Failure> over_;  // why nothing more can be asked
  // The latest line of the extension's standard error, held back because it may turn out to be its
  // last words.
  std::optional<std::string> heldLine_;
};

}  // namespace quillpad::home
