// Asks an extension many things at once, for commands that draw much. A request that ends the
// extension takes none of the others with it: after an end they are asked one by one, of another
// run of it. Belongs to one thread.
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "home/commands/ExtensionClient.h"
#include "platform/channel/Messages.h"
#include "platform/foundation/TransferReport.h"

namespace quillpad::home {

class ExtensionBatch {
 public:
  explicit ExtensionBatch(std::filesystem::path program) : program_(std::move(program)) {}

  // The answer to each of the requests.
  std::vector<ExtensionClient::Answer> ask(std::span<const channel::Request> requests);

  // How the network transfers ended that the extension has reported so far.
  const std::vector<TransferReport>& transfers() const { return transfers_; }

 private:
  // Asks them together; empty are those that an end of the extension left without an answer.
  std::vector<std::optional<ExtensionClient::Answer>> askTogether(
      std::span<const channel::Request> requests);

  std::filesystem::path program_;
  std::optional<ExtensionClient> client_;
  std::vector<TransferReport> transfers_;
  Failure lastEnd_;  // the failure where an answer is missing
};

}  // namespace quillpad::home
