#include "home/extension/Supervisor.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/Clock.h"

namespace quillpad::home {
namespace {

// The date of an entry as the channel carries it; the beginning of time where it has none.
Date dateOf(const Value& entry) {
  const auto* members = entry.as<Dictionary>();
  const Value* date = members == nullptr ? nullptr : members->find("date");
  const auto* text = date == nullptr ? nullptr : date->as<std::string>();
  return text == nullptr ? Date{} : dateFromIso8601(*text).value_or(Date{});
}

template <class T>
const T* addressOf(const std::optional<T>& value) {
  return value ? &*value : nullptr;
}

}  // namespace

Supervisor::Supervisor(Rules rules) : rules_(rules) {}

void Supervisor::restore(SavedHome saved) {
  catalogue_ = std::move(saved.catalogue);
  placed_ = {saved.placed.begin(), saved.placed.end()};
  everPlaced_ = true;
  for (auto& [kind, picture] : saved.pictures) {
    picture.restored = true;
    widgets_[kind].picture = std::move(picture);
  }
  for (const std::string& kind : placed_) {
    touch(widgets_[kind]);
  }
}

// Events

void Supervisor::timePassed(const Now& now) { advance(now); }

void Supervisor::replied(const Now& now, const channel::NumberedReply& reply) {
  lastHeard_ = now.uptime;
  const auto found = reply.id ? pending_.find(*reply.id) : pending_.end();
  if (found == pending_.end()) {
    return;  // given up before
  }
  const Pending request = std::move(found->second);
  pending_.erase(found);
  if (const auto widget = widgets_.find(request.kind); widget != widgets_.end()) {
    widget->second.busy = false;
  }
  take(now, request, reply.reply);
  advance(now);
}

void Supervisor::transferred(const channel::TransferNotice& notice) {
  if (const auto found = pending_.find(notice.report.activity); found != pending_.end()) {
    found->second.failure = notice.report.error;
  }
}

void Supervisor::printed(std::string line) { lastLine_ = std::move(line); }

void Supervisor::memoryMeasured(const Now& now, std::size_t bytes) {
  if (bytes > rules_.memoryLimit) {
    constexpr std::size_t megabyte = std::size_t{1024} * 1024;
    kill({
        .cause = Trouble::Cause::overMemory,
        .how = std::to_string(bytes / megabyte) + " MB of the " +
               std::to_string(rules_.memoryLimit / megabyte) + " MB that it may use",
        .said = "",
        .since = now.date,
    });
  }
}

void Supervisor::channelBroken(const Now& now, const std::string& what) {
  kill({.cause = Trouble::Cause::ended, .how = what, .said = "", .since = now.date});
}

void Supervisor::ended(const Now& now, const std::string& manner) {
  Trouble trouble{
      .cause = Trouble::Cause::ended, .how = manner, .said = lastLine_, .since = now.date};
  if (auto reason = std::exchange(killedFor_, std::nullopt)) {
    trouble = std::move(*reason);
  }
  loseExtension(now, std::move(trouble));
}

void Supervisor::failedToStart(const Now& now, const std::string& why) {
  loseExtension(
      now, {.cause = Trouble::Cause::notStarted, .how = why, .said = "", .since = now.date});
}

bool Supervisor::place(const Now& now, std::string_view kind) {
  if (std::ranges::find(catalogue_, kind, &channel::CatalogueItem::kind) == catalogue_.end()) {
    return false;
  }
  if (placed_.emplace(kind).second) {
    Widget& widget = widgets_[std::string(kind)];
    widget.due = now.uptime;
    touch(widget);
    ++savedVersion_;
    advance(now);
  }
  return true;
}

bool Supervisor::remove(const Now& now, std::string_view kind) {
  const auto found = placed_.find(kind);
  if (found == placed_.end()) {
    return std::ranges::find(catalogue_, kind, &channel::CatalogueItem::kind) != catalogue_.end();
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

void Supervisor::reload(const Now& now) {
  endsInARow_ = 0;
  if (life_ == Life::waiting || life_ == Life::pausing) {
    life_ = Life::asleep;
    startAt_ = now.uptime;
  }
  for (const std::string& kind : placed_) {
    widgets_[kind].due = now.uptime;
    touch(widgets_[kind]);
  }
  advance(now);
}

void Supervisor::openGallery(const Now& now) {
  galleryOpened_ = true;
  advance(now);
}

// The state machine

void Supervisor::advance(const Now& now) {
  giveUpLateRequests(now);
  if (life_ == Life::pausing && now.uptime >= startAt_) {
    life_ = Life::asleep;
  }
  if (life_ == Life::asleep && wanted()) {
    life_ = Life::starting;
    lastId_ = 0;
    proven_ = false;
    lastLine_.clear();
    lastHeard_ = now.uptime;
    actions_.emplace_back(StartExtension{});
    send(now, "", Purpose::catalogue, channel::CatalogueRequest{});
    ++version_;
  }
  if (life_ == Life::running && !killedFor_) {
    askWhatIsDue(now);
    if (proven_ && pending_.empty()) {
      endsInARow_ = 0;
      lastEnd_.reset();
    }
  }
}

// The extension is kept running for as long as there is anything that it will be asked.
bool Supervisor::wanted() const { return !everPlaced_ || !placed_.empty() || galleryOpened_; }

void Supervisor::giveUpLateRequests(const Now& now) {
  for (auto request = pending_.begin(); request != pending_.end();) {
    if (now.uptime < request->second.deadline) {
      ++request;
      continue;
    }
    const Pending late = std::move(request->second);
    request = pending_.erase(request);
    const auto seconds =
        std::chrono::duration_cast<std::chrono::seconds>(late.deadline - late.sent).count();
    const Trouble trouble{
        .cause = Trouble::Cause::late,
        .how = std::to_string(seconds) + " seconds",
        .said = "",
        .since = now.date};
    if (late.purpose != Purpose::catalogue) {
      widgets_[late.kind].busy = false;
      miss(now, late, trouble);
    }
    if (lastHeard_ <= late.sent) {  // not a word since: it hangs
      kill(trouble);
    }
  }
}

std::optional<Supervisor::Purpose> Supervisor::nextFor(
    const std::string& kind, const Widget& widget, const Now& now) const {
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
void Supervisor::askWhatIsDue(const Now& now) {
  struct Question {
    const std::string& kind;
    Widget& widget;
    Purpose purpose;
    Uptime rank;
  };
  std::vector<Question> questions;
  for (const channel::CatalogueItem& item : catalogue_) {
    Widget& widget = widgets_[item.kind];
    if (!widget.busy && !widget.unrendered && widget.picture && !widget.later.empty() &&
        now.uptime >= widget.later.front().due) {
      widget.unrendered = widget.picture;
      widget.unrendered->entry = widget.later.front().entry;
      widget.later.erase(widget.later.begin());
    }
    if (const auto purpose = nextFor(item.kind, widget, now)) {
      questions.push_back(
          {item.kind, widget, *purpose, widget.unrendered ? Uptime::min() : widget.asked});
    }
  }
  std::vector<const Question*> order;
  order.reserve(questions.size());
  for (const Question& question : questions) {
    order.push_back(&question);
  }
  std::ranges::stable_sort(order, {}, &Question::rank);
  for (const Question* question : order) {
    if (endsInARow_ > 0 && !pending_.empty()) {
      return;
    }
    const auto& [kind, widget, purpose, rank] = *question;
    widget.busy = true;
    switch (purpose) {
      case Purpose::catalogue:
        break;
      case Purpose::placeholder:
        send(now, kind, purpose, channel::PlaceholderRequest{kind});
        break;
      case Purpose::snapshot:
        send(now, kind, purpose, channel::SnapshotRequest{kind});
        break;
      case Purpose::timeline:
        widget.asked = now.uptime;
        send(now, kind, purpose, channel::TimelineRequest{kind});
        break;
      case Purpose::rendering:
        if (const Picture* awaited = addressOf(widget.unrendered)) {
          send(now, kind, purpose, channel::RenderRequest{kind, awaited->entry, std::nullopt, ""});
        }
        break;
    }
  }
}

void Supervisor::send(
    const Now& now, const std::string& kind, Purpose purpose, channel::Request request) {
  if (pending_.empty()) {
    lastLine_.clear();  // what was printed before belongs to others
  }
  const auto patience =
      purpose == Purpose::timeline ? rules_.timelineDeadline : rules_.answerDeadline;
  pending_.emplace(
      ++lastId_,
      Pending{
          .kind = kind,
          .purpose = purpose,
          .sent = now.uptime,
          .deadline = now.uptime + patience,
          .failure = std::nullopt});
  actions_.emplace_back(Send{std::move(request)});
}

void Supervisor::take(const Now& now, const Pending& request, const channel::Reply& reply) {
  const auto trouble = [&](Trouble::Cause cause, std::string how) {
    miss(
        now,
        request,
        {.cause = cause, .how = std::move(how), .said = lastLine_, .since = now.date});
  };
  proven_ = proven_ || request.purpose == Purpose::timeline;
  if (request.purpose == Purpose::catalogue) {
    if (const auto* catalogue = std::get_if<channel::Catalogue>(&reply)) {
      takeCatalogue(now, *catalogue);
    } else {
      channelBroken(now, "it did not list its widgets");
    }
  } else if (std::holds_alternative<channel::Dropped>(reply)) {
    trouble(Trouble::Cause::dropped, "");
  } else if (const auto* refused = std::get_if<channel::Refused>(&reply)) {
    trouble(Trouble::Cause::refused, refused->message);
  } else if (const auto* timeline = std::get_if<channel::Timeline>(&reply);
             timeline != nullptr && request.purpose == Purpose::timeline) {
    takeTimeline(now, request, *timeline);
  } else if (const auto* rendering = std::get_if<channel::Rendering>(&reply);
             rendering != nullptr && request.purpose == Purpose::rendering) {
    takeRendering(request.kind, *rendering);
  } else if (const auto* entry = std::get_if<channel::Entry>(&reply);
             entry != nullptr &&
             (request.purpose == Purpose::placeholder || request.purpose == Purpose::snapshot)) {
    widgets_[request.kind].unrendered = Picture{
        .source = request.purpose == Purpose::snapshot ? Picture::Source::snapshot
                                                       : Picture::Source::placeholder,
        .entry = entry->entry,
        .received = now.date};
  } else {
    trouble(Trouble::Cause::refused, "it answered something else than was asked");
  }
}

void Supervisor::takeCatalogue(const Now& now, const channel::Catalogue& catalogue) {
  life_ = Life::running;
  catalogue_ = catalogue.items;
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
    const Now& now, const Pending& request, const channel::Timeline& timeline) {
  Widget& widget = widgets_[request.kind];
  const auto wait =
      std::max<std::chrono::milliseconds>(timeline.reloadAfter - now.date, rules_.soonestReload);
  widget.due = now.uptime + wait;
  widget.reload = now.date + wait;
  widget.trouble.reset();

  widget.later.clear();
  for (const Value& entry : timeline.entries) {
    widget.later.push_back({.due = now.uptime + (dateOf(entry) - now.date), .entry = entry});
  }
  std::ranges::stable_sort(widget.later, {}, &LaterEntry::due);
  if (widget.later.empty()) {
    touch(widget);
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
      .failure = request.failure};
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
  touch(widget);
  if (isTimeline) {
    ++savedVersion_;
  }
}

// What the request is to lead to.
Picture::Source Supervisor::aimOf(const Pending& request) const {
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

// The request came to nothing: the widget keeps its picture and is asked again later.
void Supervisor::miss(const Now& now, const Pending& request, Trouble trouble) {
  Widget& widget = widgets_[request.kind];
  switch (aimOf(request)) {
    case Picture::Source::placeholder:
      widget.placeholderFailed = true;
      widget.trouble = std::move(trouble);
      break;
    case Picture::Source::snapshot:
      widget.snapshotFailed = true;
      break;
    case Picture::Source::timeline:
      widget.due = now.uptime + rules_.retry;
      widget.reload = now.date + rules_.retry;
      widget.trouble = std::move(trouble);
      break;
  }
  widget.unrendered.reset();
  touch(widget);
}

void Supervisor::kill(Trouble why) {
  if ((life_ == Life::starting || life_ == Life::running) && !killedFor_) {
    killedFor_ = std::move(why);
    actions_.emplace_back(KillExtension{});
  }
}

// Who was being asked keeps its picture and is asked again in the next run.
void Supervisor::loseExtension(const Now& now, Trouble trouble) {
  ++endsInARow_;
  const bool gaveUp = endsInARow_ > rules_.restartPauses.size();
  life_ = gaveUp ? Life::waiting : Life::pausing;
  startAt_ = now.uptime + (gaveUp ? Uptime{} : rules_.restartPauses[endsInARow_ - 1]);
  for (const auto& [id, request] : std::exchange(pending_, {})) {
    if (request.purpose == Purpose::catalogue) {
      continue;
    }
    Widget& widget = widgets_[request.kind];
    if (aimOf(request) == Picture::Source::timeline) {
      widget.due = now.uptime;
      widget.reload = now.date + (startAt_ - now.uptime);
      widget.trouble = trouble;
    }
    widget.busy = false;
    widget.unrendered.reset();
  }
  for (auto& [kind, widget] : widgets_) {
    touch(widget);
  }
  std::erase_if(
      actions_, [](const Action& action) { return std::holds_alternative<Send>(action); });
  lastEnd_ = std::move(trouble);
  advance(now);
}

// What there is to see and to do

std::vector<Supervisor::Action> Supervisor::takeActions() { return std::exchange(actions_, {}); }

std::optional<Uptime> Supervisor::wakeUp() const {
  std::optional<Uptime> earliest;
  const auto consider = [&](Uptime moment) {
    earliest = earliest ? std::min(*earliest, moment) : moment;
  };
  for (const auto& [id, request] : pending_) {
    consider(request.deadline);
  }
  if (life_ == Life::pausing) {
    consider(startAt_);
  }
  if (life_ == Life::running && !killedFor_ && (endsInARow_ == 0 || pending_.empty())) {
    for (const channel::CatalogueItem& item : catalogue_) {
      const auto found = widgets_.find(item.kind);
      if (!placed_.contains(item.kind) || found == widgets_.end() || found->second.busy) {
        continue;
      }
      const Widget& widget = found->second;
      consider(widget.due);
      if (widget.picture && !widget.later.empty()) {
        consider(widget.later.front().due);
      }
    }
  }
  return earliest;
}

std::vector<Card> Supervisor::cards() const {
  std::vector<Card> cards;
  for (const channel::CatalogueItem& item : catalogue_) {
    const auto found = widgets_.find(item.kind);
    if (!placed_.contains(item.kind) || found == widgets_.end()) {
      continue;
    }
    const Widget& widget = found->second;
    Card card{.about = &item};
    card.picture = addressOf(widget.picture);
    card.trouble = addressOf(widget.trouble);
    if (life_ != Life::waiting) {
      card.reload = widget.reload;
    }
    card.version = widget.version;
    cards.push_back(card);
  }
  return cards;
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

void Supervisor::touch(Widget& widget) { widget.version = ++version_; }

}  // namespace quillpad::home
