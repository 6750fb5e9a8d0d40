// Keeps the home screen's state in its file: a second after the first change, so that a whole round
// of fresh entries is saved at once, and again after a while where it could not be written. Belongs
// to one thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

#include "home/extension/Moment.h"
#include "home/extension/Supervisor.h"

namespace quillpad::home {

class StateKeeper {
 public:
  // Where there is no file, nothing is kept. `report` gets one line for each thing that goes wrong.
  StateKeeper(
      std::optional<std::filesystem::path> file, std::function<void(std::string_view)> report)
      : file_(std::move(file)), report_(std::move(report)) {}

  // What the last run left. A file that cannot be understood is kept aside.
  std::optional<SavedHome> load() const;

  // Removes what was kept aside: it may be of the former account.
  void accountChanged() const;

  // Saves what has changed when it is time.
  void run(const Moment& now, const Supervisor& supervisor);
  std::optional<Uptime> nextDeadline() const { return saveAt_; }

  // Saves what has changed at once.
  void saveNow(const Moment& now, const Supervisor& supervisor);

 private:
  std::optional<std::filesystem::path> file_;
  std::function<void(std::string_view)> report_;
  std::uint64_t savedVersion_ = 0;
  std::optional<Uptime> saveAt_;
};

}  // namespace quillpad::home
