// Asks an extension and waits for its answer, for commands that ask and leave. What the extension
// prints meanwhile goes to standard error. Belongs to one thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "home/extension/ExtensionSession.h"
#include "home/extension/Failure.h"
#include "platform/channel/Messages.h"
#include "platform/foundation/TransferReport.h"

namespace quillpad::home {

class ExtensionClient {
 public:
  static std::expected<ExtensionClient, Failure> start(
      const std::filesystem::path& program,
      std::size_t memoryLimit = ExtensionSession::defaultMemoryLimit);

  // The answer to the request, of the type expected. After a failure nothing more can be asked.
  template <class Answer>
  std::expected<Answer, Failure> ask(
      const channel::Request& request, std::chrono::milliseconds allowed) {
    auto reply = answerTo(request, allowed);
    if (!reply) {
      return std::unexpected(std::move(reply.error()));
    }
    if (auto* answer = std::get_if<Answer>(&*reply)) {
      return std::move(*answer);
    }
    return failure(ExitStatus::notPossible, "the extension answered something else than was asked");
  }

  template <class Answer>
  std::expected<Answer, Failure> ask(const channel::Request& request) {
    return ask<Answer>(request, ExtensionSession::timeFor(request));
  }

  // How the network transfers ended that the extension has told of so far.
  const std::vector<TransferReport>& transfers() const { return transfers_; }

 private:
  explicit ExtensionClient(ExtensionSession session) : session_(std::move(session)) {}
  std::expected<channel::Reply, Failure> answerTo(
      const channel::Request& request, std::chrono::milliseconds allowed);
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
