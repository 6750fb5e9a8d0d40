// What keeps the extension from answering, for a person to read of. A plain value.
#pragma once

#include <string>

#include "platform/foundation/Value.h"

namespace quillpad::home {

struct SessionEnd;

// Why a widget did not get a newer picture when it was last asked for.
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
  std::string detail;  // the circumstances, or the extension's reason; may be empty
  std::string output;  // the extension's last words; may be empty
  Date since;
};

// The end of a session as a problem of those who wait for its answers.
Problem problemOf(const SessionEnd& end, Date now);

}  // namespace quillpad::home
