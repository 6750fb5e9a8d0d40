// When a file that is written again counts as replaced: once nobody writes it any more and nothing
// has happened to it for a moment, so that neither half a program nor half a build is taken up. One
// that nothing happens to for long is not waited for: its end may have been missed. Of its inputs
// alone; a value.
#pragma once

#include <chrono>
#include <optional>
#include <set>
#include <string>

#include "home/extension/Moment.h"

namespace quillpad::home {

enum class FileEvent {
  begun,   // it was made or written to, and more may follow
  done,    // it was closed, or put in its place as a whole
  gone,    // it was taken away
  touched  // its mode was set: a linker makes a program executable after it has closed it
};

class ReplacementRule {
 public:
  static constexpr std::chrono::milliseconds quietTime{20};
  static constexpr std::chrono::seconds maxWait{10};

  void happened(Uptime now, const std::string& file, FileEvent event) {
    if (event == FileEvent::begun) {
      begun_.insert(file);
    } else if (event != FileEvent::touched) {
      begun_.erase(file);
    }
    changed_ = changed_ || event == FileEvent::done || event == FileEvent::touched;
    quietSince_ = now;
  }

  // When it counts at the latest, as far as is known.
  std::optional<Uptime> due() const {
    if (!begun_.empty()) {
      return quietSince_ + maxWait;
    }
    return changed_ ? std::optional(quietSince_ + quietTime) : std::nullopt;
  }

  // Whether it counts now; once for each replacement.
  bool takeReplaced(Uptime now) {
    const std::optional<Uptime> when = due();
    if (!when || now < *when) {
      return false;
    }
    changed_ = false;
    begun_.clear();
    return true;
  }

 private:
  std::set<std::string> begun_;
  bool changed_ = false;
  Uptime quietSince_{};
};

}  // namespace quillpad::home
