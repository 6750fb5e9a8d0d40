#include "home/extension/WidgetHost.h"

#include <algorithm>
#include <string>
#include <utility>

namespace quillpad::home {

WidgetHost::WidgetHost(
    std::filesystem::path extension,
    std::optional<std::filesystem::path> stateFile,
    std::function<void(std::string_view)> relay)
    : program_(std::move(extension)),
      relay_(std::move(relay)),
      state_(std::move(stateFile), [this](std::string_view problem) {
        relay_("quillpad-home: " + std::string(problem));
      }) {
  if (auto saved = state_.load()) {
    supervisor_.restore(std::move(*saved));
  }
}

void WidgetHost::addDescriptors(std::vector<pollfd>& descriptors) const {
  if (session_) {
    const auto theirs = session_->descriptors();
    descriptors.insert(descriptors.end(), theirs.begin(), theirs.end());
  }
}

std::optional<Uptime> WidgetHost::nextDeadline() const {
  std::optional<Uptime> earliest = supervisor_.nextDeadline();
  for (const auto deadline :
       {state_.nextDeadline(), session_ ? session_->nextDeadline() : std::nullopt}) {
    if (deadline) {
      earliest = std::min(earliest.value_or(*deadline), *deadline);
    }
  }
  return earliest;
}

void WidgetHost::run(const Moment& now) {
  if (session_) {
    for (SessionEvent& event : session_->poll(now.uptime)) {
      take(now, event);
    }
  }
  supervisor_.timePassed(now);
  for (auto actions = supervisor_.takeActions(); !actions.empty();
       actions = supervisor_.takeActions()) {
    for (const Supervisor::Action& action : actions) {
      carryOut(now, action);
    }
  }
  state_.run(now, supervisor_);
}

void WidgetHost::stop(const Moment& now) {
  session_.reset();
  state_.saveNow(now, supervisor_);
}

void WidgetHost::take(const Moment& now, SessionEvent& event) {
  if (const auto* reply = std::get_if<channel::NumberedReply>(&event)) {
    supervisor_.replied(now, *reply);
  } else if (const auto* transfer = std::get_if<channel::TransferNotice>(&event)) {
    supervisor_.transferred(*transfer);
  } else if (const auto* late = std::get_if<LateAnswer>(&event)) {
    supervisor_.answerIsLate(now, *late);
  } else if (const auto* line = std::get_if<PrintedLine>(&event)) {
    relay_(line->text);
  } else {
    session_.reset();
    supervisor_.ended(now, std::get<SessionEnd>(event));
  }
}

// What is still to be asked of an extension that could not be started falls away with it.
void WidgetHost::carryOut(const Moment& now, const Supervisor::Action& action) {
  if (std::holds_alternative<Supervisor::StartExtension>(action)) {
    session_.reset();
    auto started = ExtensionSession::start(program_);
    if (started) {
      session_.emplace(std::move(*started));
    } else {
      supervisor_.failedToStart(now, started.error());
    }
  } else if (const auto* ask = std::get_if<Supervisor::Ask>(&action); ask == nullptr) {
    session_.reset();
  } else if (session_) {
    session_->ask(now.uptime, ask->request);
  }
}

}  // namespace quillpad::home
