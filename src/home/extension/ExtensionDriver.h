// The placed widgets on a real extension: starts and asks it as the supervisor says, tells the
// supervisor what came of it, and keeps the state. Driven by its owner's poll loop, which also
// brings the time; nothing here blocks for long. Belongs to one thread, which must outlive the
// extension.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <poll.h>
#include <string_view>
#include <vector>

#include "home/extension/Account.h"
#include "home/extension/ExtensionSession.h"
#include "home/extension/FileWatch.h"
#include "home/extension/Moment.h"
#include "home/extension/ProcessLog.h"
#include "home/extension/StateKeeper.h"
#include "home/extension/Supervisor.h"

namespace quillpad::home {

class ExtensionDriver {
 public:
  // Takes up what the last run left in the file, where that is of the same account. `relay` gets
  // each line that the extension prints, and each of the home screen's own.
  ExtensionDriver(
      std::filesystem::path extension,
      std::optional<std::filesystem::path> stateFile,
      Account account,
      std::function<void(std::string_view)> relay);
  ExtensionDriver(const ExtensionDriver&) = delete;
  ExtensionDriver& operator=(const ExtensionDriver&) = delete;

  // What a person wants goes to the supervisor; it is carried out by the next run.
  Supervisor& supervisor() { return supervisor_; }
  const Supervisor& supervisor() const { return supervisor_; }

  // What the extension went through; and its memory now, nothing where it does not run.
  const ProcessLog& log() const { return log_; }
  std::optional<std::size_t> privateMemory() const;

  // What to wait for before the next run.
  void addDescriptors(std::vector<pollfd>& descriptors) const;
  std::optional<Uptime> nextDeadline() const;

  // Takes what has come and does what is due.
  void run(const Moment& now);

  // Ends the extension and keeps the state.
  void stop(const Moment& now);

 private:
  void checkAccount();
  void take(const Moment& now, const SessionEvent& event);
  void startExtension(const Moment& now);
  void carryOut(const Moment& now, const Supervisor::Action& action);

  std::filesystem::path program_;
  Account account_;
  FileWatch accountStore_;
  std::function<void(std::string_view)> relay_;
  Supervisor supervisor_;
  StateKeeper state_;
  std::optional<ExtensionSession> session_;
  ProcessLog log_;
};

}  // namespace quillpad::home
