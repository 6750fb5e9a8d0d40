// When an extension that ended is started again: at once after the first end in a row, after
// growing pauses for the next ones, and then not before a person asks for it. A value.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <optional>

namespace quillpad::home {

class RestartPolicy {
 public:
  // The extension ended or could not be started: how long to wait before the next start; nothing
  // where it is given up.
  std::optional<std::chrono::milliseconds> pauseAfterEnd() {
    return endsInARow_ < pauses.size() ? std::optional(pauses.at(endsInARow_++)) : std::nullopt;
  }

  // How often it has ended since the last reset; it is counted no further once it is given up.
  std::size_t endsInARow() const { return endsInARow_; }
  bool hasEnded() const { return endsInARow_ > 0; }

  // Everything was answered again, or a person asks for another try.
  void reset() { endsInARow_ = 0; }

 private:
  static constexpr std::array<std::chrono::milliseconds, 4> pauses{
      std::chrono::seconds{0},
      std::chrono::seconds{1},
      std::chrono::seconds{5},
      std::chrono::seconds{25}};

  std::size_t endsInARow_ = 0;
};

}  // namespace quillpad::home
