#include "home/extension/ExtensionDriver.h"

#include <algorithm>
#include <string>
#include <utility>

#include "home/extension/MemoryUse.h"
#include "home/extension/WidgetStatus.h"
#include "platform/foundation/Overloaded.h"

namespace quillpad::home {

ExtensionDriver::ExtensionDriver(
    std::filesystem::path extension,
    std::optional<std::filesystem::path> stateFile,
    Account account,
    std::function<void(std::string_view)> relay)
    : program_(std::move(extension)),
      account_(std::move(account)),
      accountStore_(account_.store),
      relay_(std::move(relay)),
      state_(std::move(stateFile), [this](std::string_view problem) {
        relay_("quillpad-home: " + std::string(problem));
      }) {
  if (auto saved = state_.load()) {
    supervisor_.restore(std::move(*saved));
  }
  checkAccount();
}

void ExtensionDriver::addDescriptors(std::vector<pollfd>& descriptors) const {
  descriptors.push_back({accountStore_.descriptor(), POLLIN, 0});
  if (session_) {
    const auto theirs = session_->descriptors();
    descriptors.insert(descriptors.end(), theirs.begin(), theirs.end());
  }
}

std::optional<Uptime> ExtensionDriver::nextDeadline() const {
  std::optional<Uptime> earliest = supervisor_.nextDeadline();
  for (const auto deadline :
       {state_.nextDeadline(), session_ ? session_->nextDeadline() : std::nullopt}) {
    if (deadline) {
      earliest = std::min(earliest.value_or(*deadline), *deadline);
    }
  }
  return earliest;
}

void ExtensionDriver::run(const Moment& now) {
  const auto events = session_ ? session_->poll(now.uptime) : std::vector<SessionEvent>{};
  if (accountStore_.takeChange() || !events.empty()) {
    checkAccount();
  }
  for (const SessionEvent& event : events) {
    take(now, event);
  }
  if (session_ && !supervisor_.awaitsAnswers() && session_->needsRestart()) {
    supervisor_.extensionNeedsRestart();
  }
  supervisor_.timePassed(now);
  for (auto actions = supervisor_.takeActions(); !actions.empty();
       actions = supervisor_.takeActions()) {
    for (const Supervisor::Action& action : actions) {
      carryOut(now, action);
    }
    supervisor_.timePassed(now);
  }
  state_.run(now, supervisor_);
}

std::optional<std::size_t> ExtensionDriver::privateMemory() const {
  return session_ ? std::optional(home::privateMemory(session_->pid())) : std::nullopt;
}

void ExtensionDriver::stop(const Moment& now) {
  session_.reset();
  state_.saveNow(now, supervisor_);
}

void ExtensionDriver::checkAccount() {
  if (const auto mark = account_.mark ? account_.mark() : std::nullopt) {
    if (supervisor_.accountIs(*mark)) {
      state_.accountChanged();
    }
  }
}

void ExtensionDriver::take(const Moment& now, const SessionEvent& event) {
  const Overloaded taken{
      [&](const channel::NumberedReply& reply) { supervisor_.replied(now, reply); },
      [&](const TransferReport& transfer) {
        log_.noteTransfer(now.date, transfer);
        supervisor_.transferred(transfer);
      },
      [&](const PrintedLine& line) {
        log_.notePrinted(now.date, line.text);
        relay_(line.text);
      },
      [&](const LateAnswer& late) { supervisor_.answerIsLate(now, late); },
      [&](const Problem& end) {
        session_.reset();
        log_.noteRun(now.date, end);
        supervisor_.ended(now, end);
      }};
  std::visit(taken, event);
}

void ExtensionDriver::carryOut(const Moment& now, const Supervisor::Action& action) {
  const Overloaded carriedOut{
      [&](const Supervisor::StartExtension&) { startExtension(now); },
      [&](const Supervisor::EndExtension&) {
        log_.noteRun(now.date, ProcessLog::EndedByHome{});
        session_.reset();
      },
      // What is still to be asked of an extension that could not be started falls away with it.
      [&](const Supervisor::Ask& ask) {
        if (session_) {
          log_.noteRequest(now.date, ask.request);
          session_->ask(now.uptime, ask.request);
        }
      }};
  std::visit(carriedOut, action);
}

void ExtensionDriver::startExtension(const Moment& now) {
  auto started = ExtensionSession::start(program_);
  if (started) {
    session_.emplace(std::move(*started));
    log_.noteRun(now.date, ProcessLog::Started{session_->pid()});
    return;
  }
  const Problem problem{.cause = Problem::Cause::notStarted, .detail = started.error()};
  log_.noteRun(now.date, problem);
  supervisor_.ended(now, problem);
}

}  // namespace quillpad::home
