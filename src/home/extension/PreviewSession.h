// Asks an extension of its own for entries and renderings, apart from the one that keeps the home
// screen fresh: what a person tries here may end it without harm. One job at a time; the extension
// is started when there is one and ended after a while without. Driven by its owner's poll loop.
#pragma once

#include <cstdint>
#include <deque>
#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <vector>

#include "home/extension/EntrySource.h"
#include "home/extension/ExtensionSession.h"
#include "home/extension/Moment.h"
#include "platform/channel/Messages.h"
#include "platform/foundation/Value.h"
#include "platform/ui/View.h"

namespace quillpad::home {

class PreviewSession {
 public:
  struct Job {
    std::string kind;
    EntrySource source = EntrySource::placeholder;  // no timeline
    channel::Entry entry{};                         // where it is given
    std::string locale{};                           // empty: the extension's own
    std::string currency{};                         // empty: that of the settings
  };

  struct Result {
    channel::Entry entry;
    ui::View view;
  };

  // Empty until the job is done; then its result, or what went wrong in plain words.
  using Outcome = std::optional<std::expected<Result, std::string>>;
  using PendingResult = std::shared_ptr<const Outcome>;

  explicit PreviewSession(std::filesystem::path extension) : program_(std::move(extension)) {}

  // Does the job when its turn comes, unless the result was let go before.
  PendingResult submit(const Moment& now, Job job);

  void addDescriptors(std::vector<pollfd>& descriptors) const;
  std::optional<Uptime> nextDeadline() const;

  // Takes what has come; returns whether a job was done. To be called after each poll.
  bool run(const Moment& now);

  // The program is another one now: it does the jobs after the one under way.
  void programReplaced() { replaced_ = true; }

  // Ends the extension; jobs under way stay undone.
  void stop() { session_.reset(); }

 private:
  struct QueuedJob {
    Job job;
    std::weak_ptr<Outcome> outcome;
  };

  void beginNext(const Moment& now);
  void take(const Moment& now, SessionEvent& event);
  void takeReply(const Moment& now, const channel::Reply& reply);
  void askForRendering(const Moment& now);
  void finish(const Moment& now, std::expected<Result, std::string> outcome);

  std::filesystem::path program_;
  std::optional<ExtensionSession> session_;
  std::deque<QueuedJob> jobs_;  // the first one is under way while asked_ is set
  std::optional<std::uint64_t> asked_;
  Uptime idleUntil_{};  // when the extension without work is ended
  bool done_ = false;
  bool replaced_ = false;
};

}  // namespace quillpad::home
