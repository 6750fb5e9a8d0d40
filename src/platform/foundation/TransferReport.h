// How transfers end: what the URL session tells of them, and what the channel carries to the home
// screen. Plain values.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace quillpad {

// The error of a transfer, in the numbers and words of the phone's URL error domain (-1001 is a
// time-out).
struct TransportError {
  int code = 0;
  std::string localizedDescription;
};

// How a transfer ended, for whoever watches from outside: no address beyond the path, no header and
// no body.
struct TransferReport {
  std::uint64_t activity = 0;  // the activity of the thread that resumed the task
  std::string path;
  std::optional<TransportError> error;
  int statusCode = 0;  // 0 where no response came
  std::chrono::microseconds duration{};
  std::uint64_t sentBytes = 0;
  std::uint64_t receivedBytes = 0;
};

}  // namespace quillpad
