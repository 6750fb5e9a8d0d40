#include "home/extension/Supervisor.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

// A timeline is asked for again neither in a rush nor never, whatever reload time it names.
constexpr std::chrono::milliseconds minWait = 1s;
constexpr std::chrono::milliseconds maxWait = 24h;
constexpr std::chrono::milliseconds pauseAfterFailure = 5min;

// How long after its reload time a picture still counts as the newest.
constexpr std::chrono::milliseconds maxOverdue = 1min;

template <class T>
const T* addressOf(const std::optional<T>& value) {
  return value ? &*value : nullptr;
}

}  // namespace

void Supervisor::restore(SavedHome saved) {
  catalogue_ = std::move(saved.catalogue);
  placed_ = {saved.placed.begin(), saved.placed.end()};
  everPlaced_ = true;
  for (auto& [kind, picture] : saved.pictures) {
    picture.restored = true;
    widgets_[kind].picture = std::move(picture);
  }
  for (const std::string& kind : placed_) {
    markChanged(widgets_[kind]);
  }
}

// Events

void Supervisor::timePassed(const Moment& now) { advance(now); }

void Supervisor::replied(const Moment& now, const channel::NumberedReply& reply) {
  if (const auto request = takePending(reply.id.value_or(0))) {
    take(now, *request, reply.reply);
    advance(now);
  }
}

void Supervisor::answerIsLate(const Moment& now, const LateAnswer& late) {
  if (const auto request = takePending(late.id)) {
    requestFailed(
        now,
        *request,
        {.cause = Problem::Cause::late,
         .detail = std::to_string(late.waited.count()) + " seconds",
         .output = "",
         .since = now.date});
    advance(now);
  }
}

void Supervisor::transferred(const channel::TransferNotice& notice) {
  if (const auto found = pending_.find(notice.report.activity); found != pending_.end()) {
    found->second.failure = notice.report.error;
    found->second.statusCode = notice.report.statusCode;
  }
}

void Supervisor::ended(const Moment& now, const SessionEnd& end) {
  loseExtension(now, problemOf(end, now.date));
}

void Supervisor::failedToStart(const Moment& now, std::string why) {
  loseExtension(
      now,
      {.cause = Problem::Cause::notStarted,
       .detail = std::move(why),
       .output = "",
       .since = now.date});
}

bool Supervisor::offers(std::string_view kind) const {
  return std::ranges::find(catalogue_, kind, &channel::CatalogueItem::kind) != catalogue_.end();
}

bool Supervisor::place(const Moment& now, std::string_view kind) {
  if (!offers(kind)) {
    return false;
  }
  if (placed_.emplace(kind).second) {
    Widget& widget = widgets_[std::string(kind)];
    widget.due = now.uptime;
    markChanged(widget);
    ++savedVersion_;
    advance(now);
  }
  return true;
}

bool Supervisor::remove(const Moment& now, std::string_view kind) {
  const auto found = placed_.find(kind);
  if (found == placed_.end()) {
    return offers(kind);
  }
  placed_.erase(found);
  if (const auto widget = widgets_.find(kind); widget != widgets_.end()) {
    const bool busy = widget->second.busy;
    std::optional<Picture> snapshot = std::move(widget->second.snapshot);
    widget->second = Widget{};
    widget->second.busy = busy;
    widget->second.snapshot = std::move(snapshot);
  }
  ++version_;
  ++savedVersion_;
  advance(now);
  return true;
}

void Supervisor::reload(const Moment& now) {
  restarts_.reset();
  if (life_ == Life::gaveUp || life_ == Life::backingOff) {
    life_ = Life::stopped;
  }
  for (const std::string& kind : placed_) {
    widgets_[kind].due = now.uptime;
    markChanged(widgets_[kind]);
  }
  advance(now);
}

void Supervisor::openGallery(const Moment& now) {
  galleryOpened_ = true;
  advance(now);
}

// The state machine

void Supervisor::advance(const Moment& now) {
  if (life_ == Life::backingOff && now.uptime >= startAt_) {
    life_ = Life::stopped;
  }
  if (life_ == Life::stopped && isWanted()) {
    startExtension(now);
  }
  if (life_ == Life::running) {
    askWhatIsDue(now);
    if (answeredInThisRun_ && pending_.empty()) {
      restarts_.reset();
      lastEnd_.reset();
    }
  }
  noticeOverdue(now);
}

void Supervisor::noticeOverdue(const Moment& now) {
  for (const std::string& kind : placed_) {
    Widget& widget = widgets_[kind];
    const bool overdue = life_ == Life::gaveUp || now.uptime >= widget.freshUntil;
    if (std::exchange(widget.overdue, overdue) != overdue) {
      markChanged(widget);
    }
  }
}

void Supervisor::startExtension(const Moment& now) {
  life_ = Life::starting;
  lastId_ = 0;
  answeredInThisRun_ = false;
  actions_.emplace_back(StartExtension{});
  ask(now, "", Purpose::catalogue);
  ++version_;
}

// The extension is kept running for as long as there is anything that it will be asked.
bool Supervisor::isWanted() const { return !everPlaced_ || !placed_.empty() || galleryOpened_; }

std::optional<Supervisor::Purpose> Supervisor::nextFor(
    const std::string& kind, const Widget& widget, const Moment& now) const {
  if (widget.busy) {
    return std::nullopt;
  }
  if (widget.unrendered) {
    return Purpose::rendering;
  }
  if (placed_.contains(kind)) {
    if (!widget.picture && !widget.placeholderFailed) {
      return Purpose::placeholder;
    }
    if (now.uptime >= widget.due) {
      return Purpose::timeline;
    }
  }
  if (galleryOpened_ && !widget.snapshot && !widget.snapshotFailed) {
    return Purpose::snapshot;
  }
  return std::nullopt;
}

// After an end the widgets are asked one after the other, the longest unasked first and what is
// half done before all: one whose answer ends the extension each time then takes none of the others
// with it.
void Supervisor::askWhatIsDue(const Moment& now) {
  struct Question {
    const std::string* kind;
    Purpose purpose;
    Uptime rank;
  };
  std::vector<Question> questions;
  for (const channel::CatalogueItem& item : catalogue_) {
    Widget& widget = widgets_[item.kind];
    showNextEntry(now, widget);
    if (const auto purpose = nextFor(item.kind, widget, now)) {
      questions.push_back({&item.kind, *purpose, widget.unrendered ? Uptime::min() : widget.asked});
    }
  }
  std::ranges::stable_sort(questions, {}, &Question::rank);
  for (const auto& [kind, purpose, rank] : questions) {
    if (restarts_.hasEnded() && !pending_.empty()) {
      return;
    }
    ask(now, *kind, purpose);
  }
}

// Takes the entry of the timeline whose time has come.
void Supervisor::showNextEntry(const Moment& now, Widget& widget) {
  if (!widget.busy && !widget.unrendered && widget.picture && !widget.later.empty() &&
      now.uptime >= widget.later.front().due) {
    widget.unrendered = widget.picture;
    widget.unrendered->entry = std::move(widget.later.front().entry);
    widget.later.erase(widget.later.begin());
  }
}

void Supervisor::ask(const Moment& now, const std::string& kind, Purpose purpose) {
  channel::Request request = channel::CatalogueRequest{};
  if (purpose != Purpose::catalogue) {
    Widget& widget = widgets_[kind];
    widget.busy = true;
    switch (purpose) {
      case Purpose::catalogue:
        break;
      case Purpose::placeholder:
        request = channel::PlaceholderRequest{kind};
        break;
      case Purpose::snapshot:
        request = channel::SnapshotRequest{kind};
        break;
      case Purpose::timeline:
        widget.asked = now.uptime;
        request = channel::TimelineRequest{kind};
        break;
      case Purpose::rendering:
        if (widget.unrendered) {
          request = channel::RenderRequest{kind, widget.unrendered->entry, std::nullopt, ""};
        }
        break;
    }
  }
  pending_.emplace(++lastId_, Pending{.kind = kind, .purpose = purpose});
  actions_.emplace_back(Ask{std::move(request)});
}

// The request, which is no longer under way; nothing where it is not one of this run.
std::optional<Supervisor::Pending> Supervisor::takePending(std::uint64_t id) {
  auto node = pending_.extract(id);
  if (node.empty()) {
    return std::nullopt;
  }
  if (const auto widget = widgets_.find(node.mapped().kind); widget != widgets_.end()) {
    widget->second.busy = false;
  }
  return std::move(node.mapped());
}

void Supervisor::take(const Moment& now, const Pending& request, const channel::Reply& reply) {
  const auto fail = [&](Problem::Cause cause, std::string detail) {
    requestFailed(
        now,
        request,
        {.cause = cause, .detail = std::move(detail), .output = "", .since = now.date});
  };
  answeredInThisRun_ = answeredInThisRun_ || request.purpose == Purpose::timeline;
  if (request.purpose == Purpose::catalogue) {
    takeCatalogue(now, reply);
  } else if (const auto* dropped = std::get_if<channel::Dropped>(&reply)) {
    fail(Problem::Cause::dropped, dropped->reason);
  } else if (const auto* refused = std::get_if<channel::Refused>(&reply)) {
    fail(Problem::Cause::refused, refused->message);
  } else if (const auto* timeline = std::get_if<channel::Timeline>(&reply);
             timeline != nullptr && request.purpose == Purpose::timeline) {
    takeTimeline(now, request, *timeline);
  } else if (const auto* rendering = std::get_if<channel::Rendering>(&reply);
             rendering != nullptr && request.purpose == Purpose::rendering) {
    takeRendering(request.kind, *rendering);
  } else if (const auto* entry = std::get_if<channel::Entry>(&reply);
             entry != nullptr &&
             (request.purpose == Purpose::placeholder || request.purpose == Purpose::snapshot)) {
    widgets_[request.kind].unrendered =
        Picture{.source = target(request), .entry = *entry, .received = now.date};
  } else {
    fail(Problem::Cause::refused, "it answered something else than was asked");
  }
}

// An extension without a single widget is of no use: what it listed before stays.
void Supervisor::takeCatalogue(const Moment& now, const channel::Reply& reply) {
  const auto* catalogue = std::get_if<channel::Catalogue>(&reply);
  if (catalogue == nullptr || catalogue->items.empty()) {
    actions_.emplace_back(EndExtension{});
    return loseExtension(
        now,
        {.cause = Problem::Cause::protocolError,
         .detail = "no list of its widgets",
         .output = "",
         .since = now.date});
  }
  life_ = Life::running;
  catalogue_ = catalogue->items;
  if (!everPlaced_) {
    everPlaced_ = true;
    for (const channel::CatalogueItem& item : catalogue_) {
      placed_.insert(item.kind);
      widgets_[item.kind].due = now.uptime;
    }
  }
  ++version_;
  ++savedVersion_;
}

void Supervisor::takeTimeline(
    const Moment& now, const Pending& request, const channel::Timeline& timeline) {
  Widget& widget = widgets_[request.kind];
  const auto wait =
      std::clamp<std::chrono::milliseconds>(timeline.policy.after - now.date, minWait, maxWait);
  widget.due = now.uptime + wait;
  widget.freshUntil = widget.due + maxOverdue;
  widget.reload = now.date + wait;
  widget.problem.reset();

  widget.later.clear();
  for (const channel::Entry& entry : timeline.entries) {
    widget.later.push_back({.due = now.uptime + (entry.date - now.date), .entry = entry});
  }
  std::ranges::stable_sort(widget.later, {}, &LaterEntry::due);
  if (widget.later.empty()) {
    markChanged(widget);
    return;
  }
  // The last one whose time has come, or the first one where all are still to come.
  auto next = std::ranges::upper_bound(widget.later, now.uptime, {}, &LaterEntry::due);
  if (next == widget.later.begin()) {
    ++next;
  }
  widget.unrendered = Picture{
      .source = Picture::Source::timeline,
      .entry = std::prev(next)->entry,
      .received = now.date,
      .failure = request.failure,
      .statusCode = request.statusCode};
  widget.later.erase(widget.later.begin(), next);
}

void Supervisor::takeRendering(const std::string& kind, const channel::Rendering& rendering) {
  Widget& widget = widgets_[kind];
  auto awaited = std::exchange(widget.unrendered, std::nullopt);
  if (!awaited) {
    return;
  }
  Picture picture = std::move(*awaited);
  picture.view = rendering.view;
  if (picture.source == Picture::Source::snapshot) {
    widget.snapshot = std::move(picture);
    ++version_;
    return;
  }
  if (!placed_.contains(kind)) {
    return;
  }
  const bool isTimeline = picture.source == Picture::Source::timeline;
  widget.picture = std::move(picture);
  markChanged(widget);
  if (isTimeline) {
    ++savedVersion_;
  }
}

// What the request is to lead to.
Picture::Source Supervisor::target(const Pending& request) const {
  switch (request.purpose) {
    case Purpose::placeholder:
      return Picture::Source::placeholder;
    case Purpose::snapshot:
      return Picture::Source::snapshot;
    case Purpose::rendering:
      if (const auto found = widgets_.find(request.kind); found != widgets_.end()) {
        const Picture* awaited = addressOf(found->second.unrendered);
        return awaited == nullptr ? Picture::Source::timeline : awaited->source;
      }
      break;
    case Purpose::timeline:
    case Purpose::catalogue:
      break;
  }
  return Picture::Source::timeline;
}

// The widget keeps its picture and is asked again later.
void Supervisor::requestFailed(const Moment& now, const Pending& request, Problem problem) {
  if (request.purpose == Purpose::catalogue) {
    return takeCatalogue(now, channel::Dropped{});
  }
  Widget& widget = widgets_[request.kind];
  switch (target(request)) {
    case Picture::Source::placeholder:
      widget.placeholderFailed = true;
      widget.problem = std::move(problem);
      break;
    case Picture::Source::snapshot:
      widget.snapshotFailed = true;
      break;
    case Picture::Source::timeline:
      widget.due = now.uptime + pauseAfterFailure;
      widget.reload = now.date + pauseAfterFailure;
      widget.problem = std::move(problem);
      break;
  }
  widget.unrendered.reset();
  markChanged(widget);
}

// Who was being asked keeps its picture and is asked again in the next run.
void Supervisor::loseExtension(const Moment& now, Problem problem) {
  const auto pause = restarts_.pauseAfterEnd();
  life_ = pause ? Life::backingOff : Life::gaveUp;
  startAt_ = now.uptime + pause.value_or(Uptime{});
  for (const auto& [id, request] : std::exchange(pending_, {})) {
    if (request.purpose == Purpose::catalogue) {
      continue;
    }
    Widget& widget = widgets_[request.kind];
    if (target(request) == Picture::Source::timeline) {
      widget.due = now.uptime;
      widget.reload = now.date + (startAt_ - now.uptime);
      widget.problem = problem;
    }
    widget.busy = false;
    widget.unrendered.reset();
  }
  for (auto& [kind, widget] : widgets_) {
    markChanged(widget);
  }
  std::erase_if(actions_, [](const Action& action) { return std::holds_alternative<Ask>(action); });
  lastEnd_ = std::move(problem);
  advance(now);
}

// What there is to see and to do

std::vector<Supervisor::Action> Supervisor::takeActions() { return std::exchange(actions_, {}); }

std::optional<Uptime> Supervisor::nextDeadline() const {
  std::optional<Uptime> earliest;
  const auto consider = [&](Uptime moment) {
    earliest = earliest ? std::min(*earliest, moment) : moment;
  };
  if (life_ == Life::backingOff) {
    consider(startAt_);
  }
  const bool asks = life_ == Life::running && (!restarts_.hasEnded() || pending_.empty());
  for (const std::string& kind : placed_) {
    const auto found = widgets_.find(kind);
    if (found == widgets_.end() || !offers(kind)) {
      continue;
    }
    const Widget& widget = found->second;
    if (!widget.overdue) {
      consider(widget.freshUntil);
    }
    if (asks && !widget.busy) {
      consider(widget.due);
      if (widget.picture && !widget.later.empty()) {
        consider(widget.later.front().due);
      }
    }
  }
  return earliest;
}

std::vector<WidgetState> Supervisor::widgets() const {
  std::vector<WidgetState> states;
  for (const channel::CatalogueItem& item : catalogue_) {
    const auto found = widgets_.find(item.kind);
    if (!placed_.contains(item.kind) || found == widgets_.end()) {
      continue;
    }
    const Widget& widget = found->second;
    states.push_back(
        {.about = &item,
         .picture = addressOf(widget.picture),
         .problem = addressOf(widget.problem),
         .reload = life_ == Life::gaveUp ? std::nullopt : widget.reload,
         .overdue = widget.overdue,
         .version = widget.version});
  }
  return states;
}

const Picture* Supervisor::snapshot(std::string_view kind) const {
  const auto found = widgets_.find(kind);
  return found == widgets_.end() ? nullptr : addressOf(found->second.snapshot);
}

SavedHome Supervisor::saved() const {
  SavedHome saved{
      .catalogue = catalogue_, .placed = {placed_.begin(), placed_.end()}, .pictures = {}};
  for (const std::string& kind : placed_) {
    const auto found = widgets_.find(kind);
    const Picture* picture = found == widgets_.end() ? nullptr : addressOf(found->second.picture);
    if (picture != nullptr && picture->source == Picture::Source::timeline) {
      saved.pictures.emplace(kind, *picture);
    }
  }
  return saved;
}

void Supervisor::markChanged(Widget& widget) { widget.version = ++version_; }

}  // namespace quillpad::home
