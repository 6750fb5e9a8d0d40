// Asks an extension of its own for entries and renderings, apart from the one that keeps the home
// screen fresh: what a person tries here may end it without harm. One job at a time; the extension
// is started when there is one and ended after a while without. Driven by its owner's poll loop.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <vector>

#include "home/extension/ExtensionProcess.h"
#include "home/extension/Supervisor.h"
#include "platform/channel/Messages.h"
#include "platform/foundation/Value.h"
#include "platform/ui/View.h"

namespace quillpad::home {

class Workbench {
 public:
  enum class Source { placeholder, snapshot, given };

  struct Job {
    std::string kind;
    Source source = Source::placeholder;
    Value entry;         // where it is given
    std::string locale;  // empty: the extension's own
  };

  struct Result {
    Value entry;
    ui::View view;
  };

  // Empty until the job is done; then its result, or what went wrong in plain words.
  using Ticket = std::shared_ptr<const std::optional<std::expected<Result, std::string>>>;

  Workbench(std::filesystem::path extension, Rules rules)
      : program_(std::move(extension)), rules_(rules) {}

  Ticket submit(const Now& now, Job job);

  void addDescriptors(std::vector<pollfd>& descriptors) const;
  std::optional<Uptime> wakeUp() const;

  // Takes what has come; returns whether a job was done. To be called after each poll.
  bool run(const Now& now);

  // Ends the extension; jobs under way stay undone.
  void stop() { extension_.reset(); }

 private:
  using Outcome = std::optional<std::expected<Result, std::string>>;
  struct Pending {
    Job job;
    std::shared_ptr<Outcome> outcome;
  };

  void beginNext(const Now& now);
  void ask(const Now& now, ExtensionProcess& extension, const channel::Request& request);
  void take(const Now& now, ExtensionProcess& extension, const channel::Reply& reply);
  void finish(const Now& now, std::expected<Result, std::string> outcome);
  void fail(const Now& now, std::string words);

  std::filesystem::path program_;
  Rules rules_;
  std::optional<ExtensionProcess> extension_;
  std::deque<Pending> jobs_;  // the first one is under way while asked_ is set
  std::optional<std::uint64_t> asked_;
  Uptime deadline_{};  // of what is under way, or for the extension without work
  Uptime nextMeasurement_{};
  std::string lastLine_;
  bool done_ = false;
};

}  // namespace quillpad::home
