#include "home/extension/Supervisor.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

// An extension that is asked nothing else is asked whether it is still there.
constexpr std::chrono::milliseconds pingPause = 1min;

constexpr std::size_t maxKinds = 1000;
constexpr std::size_t maxLanguages = 100;

// Why the list of widgets is not taken; empty where it is.
std::string faultOf(const channel::Catalogue* catalogue) {
  if (catalogue == nullptr || catalogue->items.empty()) {
    return "no list of its widgets";
  }
  if (catalogue->items.size() > maxKinds) {
    return "a list of more than " + std::to_string(maxKinds) + " widgets";
  }
  const bool hasTooMany = std::ranges::any_of(
      catalogue->items,
      [](const channel::CatalogueItem& item) { return item.languages.size() > maxLanguages; });
  return hasTooMany ? "a widget of more than " + std::to_string(maxLanguages) + " languages" : "";
}

// How long an extension whose program was replaced may take for what is under way.
constexpr std::chrono::milliseconds lastRequests = 1s;

template <class T>
const T* addressOf(const std::optional<T>& value) {
  return value ? &*value : nullptr;
}

}  // namespace

void Supervisor::restore(SavedHome saved) {
  setCatalogue(std::move(saved.catalogue));
  for (std::string& kind : saved.placed) {
    placed_.append(std::move(kind));
  }
  everPlaced_ = true;
  account_ = std::move(saved.account);
  for (auto& [kind, picture] : saved.pictures) {
    picture.restored = true;
    widgets_[kind].picture = std::move(picture);
  }
  for (auto& [kind, picture] : saved.kept) {
    widgets_[kind].kept = std::move(picture);
  }
  for (const std::string& kind : placed_) {
    markChanged(widgets_[kind]);
  }
}

// Events

void Supervisor::replied(const Moment& now, const channel::NumberedReply& reply) {
  if (const auto request = takePending(reply.id.value_or(0))) {
    pingAt_ = now.uptime + pingPause;
    if (!request->isOfFormerAccount) {
      take(now, *request, reply.reply);
    }
  }
}

void Supervisor::answerIsLate(const Moment& now, const LateAnswer& late) {
  if (const auto request = takePending(late.id)) {
    if (!request->isOfFormerAccount) {
      requestFailed(
          now,
          *request,
          {.cause = Problem::Cause::late, .detail = std::to_string(late.waited.count()) + " s"});
    }
  }
}

void Supervisor::transferred(const TransferReport& transfer) {
  if (const auto found = pending_.find(transfer.activity); found != pending_.end()) {
    found->second.failure = transfer.error;
    found->second.statusCode = transfer.statusCode;
  }
}

void Supervisor::extensionNeedsRestart() {
  if (life_ == Life::running && pending_.empty()) {
    actions_.emplace_back(EndExtension{});
    life_ = Life::stopped;
  }
}

bool Supervisor::accountIs(const std::string& mark) {
  if (account_ == mark) {
    return false;
  }
  const bool wasAnother = account_ || mark.empty();
  account_ = mark;
  for (auto& [id, request] : pending_) {
    request.isOfFormerAccount = request.purpose != Purpose::catalogue;
  }
  for (auto& [kind, widget] : widgets_) {
    widget.forgetAccount();
    markChanged(widget);
  }
  restartAtOnce();
  if (everPlaced_) {
    ++savedVersion_;
  }
  return wasAnother;
}

void Supervisor::programReplaced(const Moment& now) {
  replaceBy_ = replaceBy_.value_or(now.uptime + lastRequests);
}

void Supervisor::setCatalogue(std::vector<channel::CatalogueItem> items) {
  catalogue_ = std::move(items);
  ranks_.clear();
  for (std::size_t rank = 0; rank < catalogue_.size(); ++rank) {
    ranks_.emplace(catalogue_[rank].kind, rank);
  }
}

const channel::CatalogueItem* Supervisor::offered(std::string_view kind) const {
  const auto found = ranks_.find(kind);
  return found == ranks_.end() ? nullptr : &catalogue_[found->second];
}

// Before the first one that follows it in the catalogue.
std::size_t Supervisor::placeInCatalogueOrder(std::string_view kind) const {
  const auto rank = [&](std::string_view each) {
    const auto found = ranks_.find(each);
    return found == ranks_.end() ? catalogue_.size() : found->second;
  };
  const auto next = std::ranges::find_if(
      placed_, [&](const std::string& each) { return rank(each) > rank(kind); });
  return static_cast<std::size_t>(next - placed_.begin());
}

bool Supervisor::place(std::string_view kind) {
  if (offered(kind) == nullptr) {
    return false;
  }
  if (placed_.insert(placeInCatalogueOrder(kind), std::string(kind))) {
    markChanged(widgets_[std::string(kind)]);
    ++savedVersion_;
  }
  return true;
}

bool Supervisor::remove(std::string_view kind) {
  if (!placed_.erase(kind)) {
    return offered(kind) != nullptr;
  }
  recordOf(kind).leave();
  ++version_;
  ++savedVersion_;
  return true;
}

bool Supervisor::move(std::string_view kind, std::string_view before) {
  if (!placed_.move(kind, before)) {
    return false;
  }
  ++version_;
  ++savedVersion_;
  return true;
}

bool Supervisor::reload(const Moment& now, std::string_view kind) {
  if (!isPlaced(kind)) {
    return false;
  }
  WidgetRecord& widget = recordOf(kind);
  widget.want(now);
  markChanged(widget);
  restartAtOnce();
  return true;
}

void Supervisor::reload(const Moment& now) {
  for (const std::string& kind : placed_) {
    WidgetRecord& widget = recordOf(kind);
    widget.want(now);
    markChanged(widget);
  }
  restartAtOnce();
}

void Supervisor::restartAtOnce() {
  forgetEnds();
  if (!hasProcess()) {
    life_ = Life::stopped;
  }
}

void Supervisor::forgetEnds() {
  restarts_.reset();
  lastEnd_.reset();
  startAt_ = {};
  ++version_;
}

void Supervisor::openGallery(const Moment& now) {
  galleryOpened_ = true;
  timePassed(now);
}

// The state machine

void Supervisor::timePassed(const Moment& now) {
  if (life_ == Life::backingOff && now.uptime >= startAt_.uptime) {
    life_ = Life::stopped;
  }
  if (replaceBy_ && (pending_.empty() || now.uptime >= *replaceBy_)) {
    replaceExtension(now);
  }
  if (life_ == Life::stopped && isWanted()) {
    startExtension();
  }
  if (life_ == Life::running && !replaceBy_) {
    askWhatIsDue(now);
    if (pending_.empty() && now.uptime >= pingAt_) {
      ask("", Purpose::ping, channel::PingRequest{});
    }
    showRenewed();
    if (lastEnd_ && answeredInThisRun_ && pending_.empty()) {
      forgetEnds();
    }
  }
  updateLateness(now);
}

void Supervisor::updateLateness(const Moment& now) {
  for (const std::string& kind : placed_) {
    WidgetRecord& widget = recordOf(kind);
    if (widget.updateLateness(now, life_ == Life::gaveUp)) {
      markChanged(widget);
    }
  }
}

void Supervisor::startExtension() {
  life_ = Life::starting;
  lastId_ = 0;
  answeredInThisRun_ = false;
  actions_.emplace_back(StartExtension{});
  ask("", Purpose::catalogue, channel::CatalogueRequest{});
}

// What was under way is asked again of the new program, and so is all that is shown.
void Supervisor::replaceExtension(const Moment& now) {
  replaceBy_.reset();
  replaced_ = true;
  forgetEnds();  // those since then were the old program's
  if (hasProcess()) {
    actions_.emplace_back(EndExtension{});
  }
  life_ = Life::stopped;
  takeBackRequests();
  for (auto& [kind, widget] : widgets_) {
    widget.outdate(now);
  }
}

// What was asked of a process that is gone; none of it is under way any more.
std::map<std::uint64_t, Supervisor::Pending> Supervisor::takeBackRequests() {
  for (auto& [kind, widget] : widgets_) {
    widget.busy = false;
  }
  std::erase_if(actions_, [](const Action& action) { return std::holds_alternative<Ask>(action); });
  return std::exchange(pending_, {});
}

// Pictures of the program before give way all at once, so that nobody sees some of either; after an
// end, one by one as they come.
void Supervisor::showRenewed() {
  const auto isAwaited = [&](const auto& each) {
    return each.second.awaitsRenewal() && isPlaced(each.first) && offered(each.first) != nullptr;
  };
  if (!restarts_.hasEnded() && std::ranges::any_of(widgets_, isAwaited)) {
    return;
  }
  for (auto& [kind, widget] : widgets_) {
    if (widget.showRenewed()) {
      markChanged(widget);
      ++savedVersion_;
    }
  }
}

// The extension is kept running for as long as there is anything that it will be asked.
bool Supervisor::isWanted() const { return !everPlaced_ || !placed_.empty() || galleryOpened_; }

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
    WidgetRecord& widget = widgets_[item.kind];
    widget.showNextEntry(now);
    if (const auto purpose = widget.next(now, isPlaced(item.kind), galleryOpened_)) {
      questions.push_back({&item.kind, *purpose, widget.unrendered ? Uptime::min() : widget.asked});
    }
  }
  std::ranges::stable_sort(questions, {}, &Question::rank);
  for (const auto& [kind, purpose, rank] : questions) {
    if (restarts_.hasEnded() && !pending_.empty()) {
      return;
    }
    ask(*kind, purpose, widgets_[*kind].ask(now, *kind, purpose));
  }
}

void Supervisor::ask(std::string kind, Purpose purpose, channel::Request request) {
  pending_.emplace(++lastId_, Pending{.kind = std::move(kind), .purpose = purpose});
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
    requestFailed(now, request, {.cause = cause, .detail = std::move(detail)});
  };
  answeredInThisRun_ = answeredInThisRun_ || request.purpose == Purpose::timeline;
  if (request.purpose == Purpose::ping) {
    return;
  }
  if (const auto* dropped = std::get_if<channel::Dropped>(&reply)) {
    fail(Problem::Cause::dropped, dropped->reason);
  } else if (const auto* refused = std::get_if<channel::Refused>(&reply)) {
    fail(Problem::Cause::refused, refused->message);
  } else if (request.purpose == Purpose::catalogue) {
    const auto* catalogue = std::get_if<channel::Catalogue>(&reply);
    if (std::string fault = faultOf(catalogue); !fault.empty()) {
      return fail(Problem::Cause::protocolError, std::move(fault));
    }
    takeCatalogue(*catalogue);
  } else if (const auto* timeline = std::get_if<channel::Timeline>(&reply);
             timeline != nullptr && request.purpose == Purpose::timeline) {
    WidgetRecord& widget = recordOf(request.kind);
    widget.takeTimeline(now, *timeline, request.failure, request.statusCode);
    markChanged(widget);
  } else if (const auto* rendering = std::get_if<channel::Rendering>(&reply);
             rendering != nullptr && request.purpose == Purpose::rendering) {
    takeRendering(request.kind, *rendering);
  } else if (rendering != nullptr && request.purpose == Purpose::keptRendering) {
    recordOf(request.kind).keptRenewal.made = std::make_shared<const ui::View>(rendering->view);
  } else if (const auto* entry = std::get_if<channel::Entry>(&reply);
             entry != nullptr &&
             (request.purpose == Purpose::placeholder || request.purpose == Purpose::snapshot)) {
    WidgetRecord& widget = recordOf(request.kind);
    widget.unrendered = RenderedEntry{
        .source = widget.target(request.purpose), .entry = *entry, .received = now.date};
  } else {
    fail(Problem::Cause::refused, "it answered something else than was asked");
  }
}

// An extension without a single widget is of no use, one with more than any page shows is not in
// order: what it listed before stays.
void Supervisor::takeCatalogue(const channel::Catalogue& catalogue) {
  life_ = Life::running;
  setCatalogue(catalogue.items);
  std::erase_if(widgets_, [&](const auto& each) {
    return offered(each.first) == nullptr && !isPlaced(each.first);
  });
  programVersion_ += std::exchange(replaced_, false) ? 1 : 0;
  if (!everPlaced_) {
    everPlaced_ = true;
    for (const channel::CatalogueItem& item : catalogue_) {
      placed_.append(item.kind);
      markChanged(widgets_[item.kind]);
    }
  }
  ++version_;
  ++savedVersion_;
}

void Supervisor::takeRendering(const std::string& kind, const channel::Rendering& rendering) {
  WidgetRecord& widget = recordOf(kind);
  auto awaited = std::exchange(widget.unrendered, std::nullopt);
  if (!awaited) {
    return;
  }
  RenderedEntry picture = std::move(*awaited);
  picture.view = std::make_shared<const ui::View>(rendering.view);
  if (picture.source == EntrySource::snapshot) {
    widget.snapshot = {.picture = std::move(picture)};
    ++snapshotVersion_;
    ++version_;
    return;
  }
  if (!isPlaced(kind)) {
    return;
  }
  if (picture.source == EntrySource::timeline) {
    widget.wait = {};
  }
  if (widget.renewal.wanted) {
    widget.renewal.made = std::move(picture);
  } else {
    widget.takeOver(std::move(picture));
  }
  markChanged(widget);
  ++savedVersion_;
}

void Supervisor::requestFailed(const Moment& now, const Pending& request, Problem problem) {
  if (request.purpose == Purpose::catalogue) {
    actions_.emplace_back(EndExtension{});
    return ended(now, problem);
  }
  if (request.purpose == Purpose::ping) {
    return;
  }
  WidgetRecord& widget = recordOf(request.kind);
  if (request.purpose == Purpose::keptRendering) {
    widget.keptRenewal = {};  // it stays as it was
    return;
  }
  widget.fail(now, widget.target(request.purpose), std::move(problem));
  markChanged(widget);
}

void Supervisor::ended(const Moment& now, const Problem& problem) {
  const auto pause = restarts_.pauseAfterEnd();
  life_ = pause ? Life::backingOff : Life::gaveUp;
  const Uptime wait = pause.value_or(Uptime{});
  startAt_ = {.date = now.date + wait, .uptime = now.uptime + wait};
  for (const auto& [id, request] : takeBackRequests()) {
    if (request.kind.empty()) {
      continue;
    }
    WidgetRecord& widget = recordOf(request.kind);
    if (widget.target(request.purpose) == EntrySource::timeline) {
      widget.due = now.uptime;
      widget.reload = now.date;
      widget.problem = problem;
    }
    widget.unrendered.reset();
  }
  for (auto& [kind, widget] : widgets_) {
    widget.wait = {.byPerson = widget.wait.byPerson && life_ != Life::gaveUp, .since = {}};
    if (widget.renewal.isAwaited()) {
      widget.problem = problem;
    }
    markChanged(widget);
  }
  lastEnd_ = problem;
  ++version_;
}

// What there is to see and to do

std::vector<Supervisor::Action> Supervisor::takeActions() { return std::exchange(actions_, {}); }

std::vector<std::pair<Purpose, std::string>> Supervisor::underWay() const {
  std::vector<std::pair<Purpose, std::string>> requests;
  requests.reserve(pending_.size());
  for (const auto& [id, request] : pending_) {
    requests.emplace_back(request.purpose, request.kind);
  }
  return requests;
}

std::optional<Uptime> Supervisor::nextDeadline() const {
  std::optional<Uptime> earliest;
  const auto consider = [&](Uptime moment) {
    earliest = earliest ? std::min(*earliest, moment) : moment;
  };
  if (life_ == Life::backingOff) {
    consider(startAt_.uptime);
  }
  if (life_ == Life::running && pending_.empty()) {
    consider(pingAt_);
  }
  if (replaceBy_) {
    consider(*replaceBy_);
  }
  const bool asks =
      life_ == Life::running && !replaceBy_ && (!restarts_.hasEnded() || pending_.empty());
  for (const std::string& kind : placed_) {
    if (offered(kind) == nullptr) {
      continue;
    }
    const WidgetRecord& widget = recordOf(kind);
    if (const auto notice = widget.nextLatenessChange()) {
      consider(*notice);
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
  for (const std::string& kind : placed_) {
    const channel::CatalogueItem* item = offered(kind);
    if (item == nullptr) {
      continue;
    }
    const WidgetRecord& widget = recordOf(kind);
    states.push_back(
        {.about = item,
         .picture = addressOf(widget.picture),
         .kept = addressOf(widget.kept),
         .problem = addressOf(widget.problem),
         .reload = nextReload(widget),
         .overdue = widget.overdue,
         .awaited = widget.wait.byPerson || widget.wait.isLong,
         .slowSince = widget.wait.isLong && widget.wait.since
                          ? std::optional(widget.wait.since->date)
                          : std::nullopt,
         .version = widget.version});
  }
  return states;
}

// Until a pause is over nothing is asked.
std::optional<Date> Supervisor::nextReload(const WidgetRecord& widget) const {
  if (life_ == Life::gaveUp || !widget.reload) {
    return std::nullopt;
  }
  return std::max(*widget.reload, startAt_.date);
}

const RenderedEntry* Supervisor::snapshot(std::string_view kind) const {
  const auto found = widgets_.find(kind);
  return found == widgets_.end() ? nullptr : addressOf(found->second.snapshot.picture);
}

SavedHome Supervisor::saved() const {
  SavedHome saved{
      .catalogue = catalogue_,
      .placed = placed_.inOrder(),
      .pictures = {},
      .kept = {},
      .account = account_};
  for (const std::string& kind : placed_) {
    const WidgetRecord& widget = recordOf(kind);
    if (const auto& picture = widget.picture; picture && picture->source == EntrySource::timeline) {
      saved.pictures.emplace(kind, *picture);
    }
    if (widget.kept) {
      saved.kept.emplace(kind, *widget.kept);
    }
  }
  return saved;
}

// Of one that is placed or was asked for, as there always is.
WidgetRecord& Supervisor::recordOf(std::string_view kind) { return widgets_.find(kind)->second; }

const WidgetRecord& Supervisor::recordOf(std::string_view kind) const {
  return widgets_.find(kind)->second;
}

void Supervisor::markChanged(WidgetRecord& widget) { widget.version = ++version_; }

}  // namespace quillpad::home
