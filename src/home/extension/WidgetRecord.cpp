#include "home/extension/WidgetRecord.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/foundation/Fatal.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

// A timeline is asked for again neither in a rush nor never, whatever reload time it names.
constexpr std::chrono::milliseconds minWait = 1s;
constexpr std::chrono::milliseconds maxWait = 24h;
constexpr std::chrono::milliseconds pauseAfterFailure = 5min;

// How long after its reload time a picture still counts as the newest.
constexpr std::chrono::milliseconds maxOverdue = 1min;

// From when on a wait is long.
constexpr std::chrono::milliseconds slowAfter = 2s;

}  // namespace

std::optional<Purpose> WidgetRecord::next(const Moment& now, bool placed, bool inGallery) const {
  if (busy) {
    return std::nullopt;
  }
  if (unrendered) {
    return Purpose::rendering;
  }
  if (placed && keptRenewal.isAwaited()) {
    return Purpose::keptRendering;
  }
  if (inGallery && snapshot.outdated && !snapshot.failed) {
    return Purpose::snapshot;
  }
  if (placed) {
    if (!picture && !placeholderFailed) {
      return Purpose::placeholder;
    }
    if (now.uptime >= due) {
      return Purpose::timeline;
    }
  }
  if (inGallery && !snapshot.picture && !snapshot.failed) {
    return Purpose::snapshot;
  }
  return std::nullopt;
}

channel::Request WidgetRecord::ask(const Moment& now, const std::string& kind, Purpose purpose) {
  busy = true;
  if (purpose != Purpose::keptRendering && target(purpose) != EntrySource::snapshot) {
    wait.since = wait.since.value_or(now);
  }
  switch (purpose) {
    case Purpose::timeline:
      asked = now.uptime;
      [[fallthrough]];
    case Purpose::placeholder:
    case Purpose::snapshot:
      return requestFor(target(purpose), kind);
    case Purpose::rendering:
      return channel::RenderRequest{kind, forced(unrendered, "the entry").entry, std::nullopt};
    case Purpose::keptRendering:
      return channel::RenderRequest{kind, forced(kept, "the kept picture").entry, std::nullopt};
    case Purpose::catalogue:
    case Purpose::ping:
      break;
  }
  fatal("the extension is asked for no widget");
}

EntrySource WidgetRecord::target(Purpose purpose) const {
  switch (purpose) {
    case Purpose::placeholder:
      return EntrySource::placeholder;
    case Purpose::snapshot:
      return EntrySource::snapshot;
    case Purpose::rendering:
      return unrendered ? unrendered->source : EntrySource::timeline;
    case Purpose::timeline:
    case Purpose::keptRendering:
    case Purpose::catalogue:
    case Purpose::ping:
      break;
  }
  return EntrySource::timeline;
}

std::optional<Uptime> WidgetRecord::nextLatenessChange() const {
  std::optional<Uptime> change;
  if (!overdue) {
    change = freshUntil;
  }
  if (wait.since && !wait.isLong) {
    const Uptime becomesLong = wait.since->uptime + slowAfter;
    change = std::min(change.value_or(becomesLong), becomesLong);
  }
  return change;
}

bool WidgetRecord::awaitsRenewal() const { return renewal.isAwaited() || keptRenewal.isAwaited(); }

void WidgetRecord::want(const Moment& now) {
  due = now.uptime;
  reload = now.date;
  wait.byPerson = true;
}

bool WidgetRecord::updateLateness(const Moment& now, bool nothingComes) {
  const bool wasOverdue = std::exchange(overdue, nothingComes || now.uptime >= freshUntil);
  const bool wasLong =
      std::exchange(wait.isLong, wait.since && now.uptime - wait.since->uptime >= slowAfter);
  return overdue != wasOverdue || wait.isLong != wasLong;
}

void WidgetRecord::showNextEntry(const Moment& now) {
  if (!busy && !unrendered && picture && !later.empty() && now.uptime >= later.front().due) {
    unrendered = picture;
    unrendered->entry = std::move(later.front().entry);
    later.erase(later.begin());
  }
}

void WidgetRecord::takeTimeline(
    const Moment& now,
    const channel::Timeline& timeline,
    const std::optional<TransportError>& failure,
    int statusCode) {
  const auto pause =
      std::clamp<std::chrono::milliseconds>(timeline.policy.after - now.date, minWait, maxWait);
  due = now.uptime + pause;
  freshUntil = due + maxOverdue;
  reload = now.date + pause;
  problem.reset();

  later.clear();
  for (const channel::Entry& entry : timeline.entries) {
    later.push_back({.due = now.uptime + (entry.date - now.date), .entry = entry});
  }
  std::ranges::stable_sort(later, {}, &LaterEntry::due);
  if (later.empty()) {
    wait = {};
    return;
  }
  // The last one whose time has come, or the first one where all are still to come.
  auto next = std::ranges::upper_bound(later, now.uptime, {}, &LaterEntry::due);
  if (next == later.begin()) {
    ++next;
  }
  unrendered = RenderedEntry{
      .source = EntrySource::timeline,
      .entry = std::prev(next)->entry,
      .received = now.date,
      .failure = failure ? std::optional(FailedTransfer{*failure, now.date}) : std::nullopt,
      .statusCode = statusCode};
  later.erase(later.begin(), next);
}

void WidgetRecord::takeOver(RenderedEntry next) {
  if (!next.failure) {
    kept.reset();
    keptRenewal = {};
  } else if (picture && picture->failure) {
    next.failure->since = picture->failure->since;
  } else if (picture && picture->source == EntrySource::timeline) {
    kept = picture;
    keptRenewal.wanted = renewal.wanted;
  }
  picture = std::move(next);
}

void WidgetRecord::fail(const Moment& now, EntrySource target, Problem cause) {
  switch (target) {
    case EntrySource::placeholder:
      placeholderFailed = true;
      problem = std::move(cause);
      break;
    case EntrySource::snapshot:
      snapshot.failed = true;
      break;
    case EntrySource::timeline:
      due = now.uptime + pauseAfterFailure;
      reload = now.date + pauseAfterFailure;
      problem = std::move(cause);
      break;
    case EntrySource::given:
      break;
  }
  unrendered.reset();
  if (target != EntrySource::snapshot) {
    wait = {};
  }
  renewal.wanted = renewal.made.has_value();
}

void WidgetRecord::outdate(const Moment& now) {
  due = now.uptime;
  renewal = {.wanted = picture.has_value(), .made = {}};
  keptRenewal = {.wanted = kept.has_value(), .made = {}};
  if (picture && !unrendered) {
    unrendered = picture;
  }
  placeholderFailed = false;
  snapshot.failed = false;
  snapshot.outdated = snapshot.picture.has_value();
}

bool WidgetRecord::showRenewed() {
  const bool changed = renewal.made || keptRenewal.made;
  if (keptRenewal.made) {
    forced(kept, "the kept picture").view = *std::move(keptRenewal.made);
    keptRenewal = {};
  }
  if (renewal.made) {
    takeOver(*std::move(renewal.made));
    renewal = {};
    problem.reset();
  }
  return changed;
}

void WidgetRecord::leave() {
  WidgetRecord left;
  left.busy = busy;
  left.snapshot = std::move(snapshot);
  *this = std::move(left);
}

void WidgetRecord::forgetAccount() {
  WidgetRecord fresh;
  fresh.snapshot = std::move(snapshot);
  fresh.snapshot.failed = false;
  fresh.busy = busy;
  fresh.wait.byPerson = true;
  if (picture && picture->source == EntrySource::placeholder) {
    fresh.picture = std::move(picture);
    fresh.renewal.wanted = renewal.wanted;
  }
  *this = std::move(fresh);
}

}  // namespace quillpad::home
