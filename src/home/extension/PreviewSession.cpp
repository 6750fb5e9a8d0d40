#include "home/extension/PreviewSession.h"

#include <utility>

#include "home/extension/WidgetStatus.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

constexpr auto idleTime = 15s;

}  // namespace

PreviewSession::PendingResult PreviewSession::submit(const Moment& now, Job job) {
  auto outcome = std::make_shared<Outcome>();
  std::erase_if(jobs_, [this](const QueuedJob& queued) {
    const bool isUnderWay = asked_ && &queued == &jobs_.front();
    return queued.outcome.expired() && !isUnderWay;
  });
  jobs_.push_back({std::move(job), outcome});
  beginNext(now);
  return outcome;
}

void PreviewSession::addDescriptors(std::vector<pollfd>& descriptors) const {
  if (session_) {
    const auto theirs = session_->descriptors();
    descriptors.insert(descriptors.end(), theirs.begin(), theirs.end());
  }
}

std::optional<Uptime> PreviewSession::nextDeadline() const {
  if (!session_) {
    return std::nullopt;
  }
  return asked_ ? session_->nextDeadline() : idleUntil_;
}

bool PreviewSession::run(const Moment& now) {
  if (session_) {
    for (SessionEvent& event : session_->poll(now.uptime)) {
      take(now, event);
    }
  }
  if (session_ && !asked_ && now.uptime >= idleUntil_) {
    session_.reset();
  }
  beginNext(now);
  return std::exchange(done_, false);
}

void PreviewSession::beginNext(const Moment& now) {
  while (!asked_ && !jobs_.empty()) {
    const auto& [job, outcome] = jobs_.front();
    if (outcome.expired()) {
      jobs_.pop_front();
      continue;
    }
    if (std::exchange(replaced_, false)) {
      session_.reset();
    }
    if (!session_) {
      auto started = ExtensionSession::start(program_);
      if (!started) {
        finish(now, std::unexpected(started.error()));
        continue;
      }
      session_.emplace(std::move(*started));
    }
    if (job.source == EntrySource::given) {
      askForRendering(now);
    } else {
      asked_ = session_->ask(now.uptime, requestFor(job.source, job.kind));
    }
  }
}

void PreviewSession::take(const Moment& now, SessionEvent& event) {
  if (const auto* reply = std::get_if<channel::NumberedReply>(&event)) {
    takeReply(now, reply->reply);
  } else if (std::holds_alternative<LateAnswer>(event)) {
    session_.reset();
    finish(now, std::unexpected("The extension did not answer in time."));
  } else if (const auto* problem = std::get_if<Problem>(&event)) {
    session_.reset();
    if (asked_) {
      finish(now, std::unexpected(inPlainWords(*problem)));
    }
  }
}

void PreviewSession::takeReply(const Moment& now, const channel::Reply& reply) {
  Job& job = jobs_.front().job;
  if (const auto* refused = std::get_if<channel::Refused>(&reply)) {
    finish(now, std::unexpected("The extension could not take it: " + refused->message + "."));
  } else if (const auto* entry = std::get_if<channel::Entry>(&reply);
             entry != nullptr && job.source != EntrySource::given) {
    job.entry = *entry;
    job.source = EntrySource::given;
    askForRendering(now);
  } else if (const auto* rendering = std::get_if<channel::Rendering>(&reply);
             rendering != nullptr && job.source == EntrySource::given) {
    finish(now, Result{.entry = job.entry, .view = rendering->view});
  } else {
    finish(now, std::unexpected("The extension gave no answer."));
  }
}

void PreviewSession::askForRendering(const Moment& now) {
  if (!session_) {
    return finish(now, std::unexpected("The extension gave no answer."));
  }
  const Job& job = jobs_.front().job;
  asked_ = session_->ask(
      now.uptime,
      channel::RenderRequest{job.kind, job.entry, std::nullopt, job.locale, job.currency});
}

void PreviewSession::finish(const Moment& now, std::expected<Result, std::string> outcome) {
  asked_.reset();
  idleUntil_ = now.uptime + idleTime;
  if (const auto waitedFor = jobs_.front().outcome.lock()) {
    *waitedFor = std::move(outcome);
    done_ = true;
  }
  jobs_.pop_front();
}

}  // namespace quillpad::home
