// Asks an extension and waits for its answer, for commands that ask and leave. What the extension
// prints meanwhile goes to standard error. Belongs to one thread.
#pragma once

#include <chrono>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "home/extension/ExtensionProcess.h"
#include "home/extension/Failure.h"
#include "platform/channel/Messages.h"
#include "platform/foundation/TransferReport.h"

namespace quillpad::home {

class ExtensionClient {
 public:
  static std::expected<ExtensionClient, Failure> start(const std::filesystem::path& program);

  // How long an answer may take: 30 s, and 90 s for a timeline, which is longer than the extension
  // itself waits for the network.
  static std::chrono::seconds deadline(const channel::Request& request);

  // The answer to the request, of the type expected. Without one in the time allowed the extension
  // is stopped.
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
    return ask<Answer>(request, deadline(request));
  }

  // How the network transfers ended that the extension has told of so far.
  const std::vector<TransferReport>& transfers() const { return transfers_; }

 private:
  explicit ExtensionClient(ExtensionProcess process) : process_(std::move(process)) {}
  std::expected<channel::Reply, Failure> answerTo(
      const channel::Request& request, std::chrono::milliseconds allowed);
  // What the event means for the request that is waited for; nothing: wait on.
  std::optional<std::expected<channel::Reply, Failure>> consider(
      std::uint64_t id, ExtensionEvent& event);
  std::expected<channel::Reply, Failure> ended(const ExtensionEnd& end);
  void relayHeldLine();

  ExtensionProcess process_;
  std::vector<TransferReport> transfers_;
  // The latest line of the extension's standard error, held back because it may turn out to be its
  // last words.
  std::optional<std::string> heldLine_;
};

}  // namespace quillpad::home
