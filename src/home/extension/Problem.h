// What keeps the extension from answering, for a person to read of. A plain value.
#pragma once

#include <string>

namespace quillpad::home {

// Why a widget did not get a newer picture when it was last asked for, or why a session ended.
struct Problem {
  enum class Cause {
    dropped,        // the extension let the request go unanswered
    refused,        // it could not take the request
    late,           // no answer came in time
    ended,          // it ended
    protocolError,  // it said what is not to be understood, and was ended
    overMemory,     // it was ended for using too much memory
    notStarted,     // it could not be started
  };

  Cause cause = Cause::ended;
  std::string detail{};  // the circumstances, or the extension's reason; may be empty
  // The last line that the extension wrote to standard error about what it was asked; may be empty.
  std::string lastWords{};
};

}  // namespace quillpad::home
