// Passes lines on to a descriptor, standard error say, without ever waiting for who reads them:
// what is not taken is kept up to a bound, lines beyond it or in too quick a succession are dropped
// and counted. Driven by its owner's poll loop. Belongs to one thread.
#pragma once

#include <cstddef>
#include <optional>
#include <poll.h>
#include <string>
#include <string_view>

#include "home/extension/Moment.h"

namespace quillpad::home {

class LineRelay {
 public:
  // The descriptor stays its owner's.
  explicit LineRelay(int descriptor) : descriptor_(descriptor) {}

  // Passes the line on, now or when there is room.
  void add(Uptime now, std::string_view line);

  // What to poll for; negative while there is nothing to write.
  pollfd descriptor() const { return {pending_.empty() ? -1 : descriptor_, POLLOUT, 0}; }

  // When lines that were dropped are to be reported, though no other line comes.
  std::optional<Uptime> nextDeadline() const;

  // Writes what is taken now. To be called after each poll.
  void run(Uptime now);

 private:
  void tellDropped();
  void write();
  void append(std::string_view line);

  int descriptor_;
  std::string pending_;
  std::size_t dropped_ = 0;
  Uptime second_{};                // the one that is under way
  std::size_t bytesInSecond_ = 0;  // that were taken in it
};

}  // namespace quillpad::home
