#include "home/extension/StateKeeper.h"

#include <string>
#include <system_error>

#include "home/extension/StateFile.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

constexpr auto saveDelay = 1s;
constexpr auto pauseAfterFailedSave = 30s;

}  // namespace

std::optional<SavedHome> StateKeeper::load() const {
  if (!file_) {
    return std::nullopt;
  }
  auto saved = readState(*file_);
  if (saved) {
    return std::move(*saved);
  }
  const std::filesystem::path aside = asideOf(*file_);
  std::error_code error;
  std::filesystem::rename(*file_, aside, error);
  report_(
      saved.error() + "; starting afresh" +
      (error ? std::string() : ", it is kept as " + aside.string()));
  return std::nullopt;
}

void StateKeeper::accountChanged() const {
  if (!file_) {
    return;
  }
  if (const auto forgotten = forgetAside(*file_); !forgotten) {
    report_(forgotten.error());
  }
}

void StateKeeper::run(const Moment& now, const Supervisor& supervisor) {
  if (!file_ || supervisor.savedVersion() == savedVersion_) {
    return;
  }
  if (!saveAt_) {
    saveAt_ = now.uptime + saveDelay;
  }
  if (now.uptime >= *saveAt_) {
    saveNow(now, supervisor);
  }
}

void StateKeeper::saveNow(const Moment& now, const Supervisor& supervisor) {
  if (!file_ || supervisor.savedVersion() == savedVersion_) {
    return;
  }
  if (const auto written = writeState(*file_, supervisor.saved()); !written) {
    report_(written.error());
    saveAt_ = now.uptime + pauseAfterFailedSave;
    return;
  }
  savedVersion_ = supervisor.savedVersion();
  saveAt_.reset();
}

}  // namespace quillpad::home
