// How a command can fail: its exit status and one sentence for a person.
#pragma once

#include <expected>
#include <string>
#include <utility>

namespace quillpad::home {

enum class ExitStatus {
  done = 0,
  notPossible = 1,     // something here is in the way: a file, a port, a missing program
  wrongUsage = 2,      // an unknown kind, option or value
  dropped = 3,         // the extension let the request go without an answer
  extensionEnded = 4,  // with its last words in the message
  different = 5,       // pictures that were to look the same do not
};

struct Failure {
  ExitStatus status = ExitStatus::notPossible;
  std::string message;
};

using Done = std::expected<void, Failure>;

inline std::unexpected<Failure> failure(ExitStatus status, std::string message) {
  return std::unexpected(Failure{status, std::move(message)});
}

}  // namespace quillpad::home
