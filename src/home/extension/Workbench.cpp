#include "home/extension/Workbench.h"

#include <algorithm>
#include <utility>

#include "home/extension/MemoryUse.h"
#include "home/extension/WidgetStatus.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

constexpr auto idleTime = 15s;
constexpr auto measurementPause = 100ms;

}  // namespace

Workbench::Ticket Workbench::submit(const Now& now, Job job) {
  auto outcome = std::make_shared<Outcome>();
  jobs_.push_back({std::move(job), outcome});
  beginNext(now);
  return outcome;
}

void Workbench::addDescriptors(std::vector<pollfd>& descriptors) const {
  if (extension_) {
    const auto theirs = extension_->descriptors();
    descriptors.insert(descriptors.end(), theirs.begin(), theirs.end());
  }
}

std::optional<Uptime> Workbench::wakeUp() const {
  if (!extension_) {
    return std::nullopt;
  }
  return asked_ ? std::min(deadline_, nextMeasurement_) : deadline_;
}

bool Workbench::run(const Now& now) {
  if (extension_) {
    for (const ExtensionEvent& event : extension_->takeEvents()) {
      if (const auto* reply = std::get_if<channel::NumberedReply>(&event)) {
        if (asked_ && reply->id == asked_) {
          take(now, *extension_, reply->reply);
        }
      } else if (const auto* line = std::get_if<PrintedLine>(&event)) {
        lastLine_ = line->text;
      } else if (const auto* garbage = std::get_if<Garbage>(&event)) {
        lastLine_ = garbage->reason;
        extension_->kill();
      } else if (const auto* end = std::get_if<ExtensionEnd>(&event)) {
        const Trouble trouble{
            .cause = Trouble::Cause::ended,
            .how = end->manner(),
            .said = lastLine_,
            .since = now.date};
        extension_.reset();
        fail(now, inPlainWords(trouble));
        break;
      }
    }
  }
  if (extension_ && now.uptime >= deadline_) {
    extension_.reset();
    fail(now, "The extension did not answer in time.");
  }
  if (extension_ && asked_ && now.uptime >= nextMeasurement_) {
    nextMeasurement_ = now.uptime + measurementPause;
    if (privateMemory(extension_->pid()) > rules_.memoryLimit) {
      extension_.reset();
      fail(now, "The extension used more memory than it may.");
    }
  }
  beginNext(now);
  return std::exchange(done_, false);
}

void Workbench::beginNext(const Now& now) {
  while (!asked_ && !jobs_.empty()) {
    if (!extension_) {
      auto started = ExtensionProcess::start(program_);
      if (!started) {
        finish(now, std::unexpected(started.error()));
        continue;
      }
      extension_.emplace(std::move(*started));
    }
    lastLine_.clear();
    const Job& job = jobs_.front().job;
    switch (job.source) {
      case Source::placeholder:
        ask(now, *extension_, channel::PlaceholderRequest{job.kind});
        break;
      case Source::snapshot:
        ask(now, *extension_, channel::SnapshotRequest{job.kind});
        break;
      case Source::given:
        ask(now,
            *extension_,
            channel::RenderRequest{job.kind, job.entry, std::nullopt, job.locale});
        break;
    }
  }
}

void Workbench::ask(const Now& now, ExtensionProcess& extension, const channel::Request& request) {
  asked_ = extension.send(request);
  deadline_ = now.uptime + rules_.answerDeadline;
}

void Workbench::take(const Now& now, ExtensionProcess& extension, const channel::Reply& reply) {
  Job& job = jobs_.front().job;
  if (const auto* entry = std::get_if<channel::Entry>(&reply)) {
    job.entry = entry->entry;
    job.source = Source::given;
    ask(now, extension, channel::RenderRequest{job.kind, job.entry, std::nullopt, job.locale});
  } else if (const auto* rendering = std::get_if<channel::Rendering>(&reply)) {
    finish(now, Result{.entry = job.entry, .view = rendering->view});
  } else if (const auto* refused = std::get_if<channel::Refused>(&reply)) {
    finish(now, std::unexpected("The extension could not take it: " + refused->message + "."));
  } else {
    finish(now, std::unexpected("The extension gave no answer."));
  }
}

void Workbench::finish(const Now& now, std::expected<Result, std::string> outcome) {
  asked_.reset();
  deadline_ = now.uptime + idleTime;
  *jobs_.front().outcome = std::move(outcome);
  jobs_.pop_front();
  done_ = true;
}

// The extension is gone, and with it the job under way if there is one.
void Workbench::fail(const Now& now, std::string words) {
  if (asked_) {
    finish(now, std::unexpected(std::move(words)));
  }
}

}  // namespace quillpad::home
