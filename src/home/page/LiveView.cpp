#include "home/page/LiveView.h"

#include <algorithm>
#include <chrono>
#include <vector>

#include "home/extension/Moment.h"
#include "home/extension/WidgetStatus.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Json.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

// How long a page waits for its pictures.
constexpr auto pictureTimeout = 5s;
constexpr std::size_t maxKeptEvents = 100;

}  // namespace

void LiveView::forgetRemoved() {
  drawings_.keepOnly([this](std::string_view kind) { return supervisor_.isPlaced(kind); });
}

LaterAnswer LiveView::page(HomeView view, const PageFrame& frame) {
  const Uptime deadline = presentMoment().uptime + pictureTimeout;
  const auto take = [this, deadline, view, frame = frame]() mutable -> std::optional<WebAnswer> {
    frame.version = drawnVersion();
    if (frame.version != supervisor_.version() && presentMoment().uptime < deadline) {
      return std::nullopt;
    }
    frame.notice = notice(frame.language);
    HomeModel model{.view = view, .cards = {}, .empty = emptyText(frame.language)};
    for (const WidgetState& card : supervisor_.widgets()) {
      model.cards.push_back(modelOf(card, frame.language));
    }
    return pageAnswer(homePage(model, frame, currentDate()), frame);
  };
  return {.take = take, .timeout = pictureTimeout};
}

LaterAnswer LiveView::gallery(const PageFrame& frame) {
  const Uptime deadline = presentMoment().uptime + pictureTimeout;
  const auto take = [this, deadline, frame]() -> std::optional<WebAnswer> {
    const auto& catalogue = supervisor_.catalogue();
    const bool mayWait = presentMoment().uptime < deadline;
    // They are drawn when the last one has come: each makes those before outdated.
    const bool isWhole = std::ranges::all_of(
        catalogue, [this](const auto& item) { return supervisor_.snapshot(item.kind) != nullptr; });
    if (!isWhole && supervisor_.awaitsAnswers() && mayWait) {
      return std::nullopt;
    }
    std::vector<OfferModel> offers;
    for (const channel::CatalogueItem& item : catalogue) {
      OfferModel offer{.about = &item, .placed = supervisor_.isPlaced(item.kind)};
      if (const RenderedEntry* snapshot = supervisor_.snapshot(item.kind)) {
        const auto* drawing = drawings_.ofSnapshot(item, *snapshot, supervisor_.snapshotVersion());
        if (drawing == nullptr && mayWait) {
          return std::nullopt;
        }
        offer.drawing = drawing != nullptr && drawing->card ? &*drawing->card : nullptr;
      }
      offers.push_back(offer);
    }
    return htmlAnswer(galleryMarkup(offers, frame));
  };
  return {.take = take, .timeout = pictureTimeout};
}

WebAnswer LiveView::changes(std::uint64_t since, const PageFrame& frame) {
  auto changes = changesBetween(since, drawnVersion(), frame);
  return changes
             ? WebAnswer{.contentType = "application/json; charset=utf-8", .body = std::move(*changes)}
             : WebAnswer{.status = 500, .body = "The changes cannot be written.\n"};
}

EventStream LiveView::events(std::uint64_t since, const PageFrame& frame) {
  return [this, since, frame]() mutable -> std::shared_ptr<const std::string> {
    if (since == supervisor_.version()) {
      return nullptr;
    }
    const std::uint64_t version = drawnVersion();
    if (since >= version) {
      return nullptr;
    }
    if (eventsVersion_ != version || events_.size() > maxKeptEvents) {
      eventsVersion_ = version;
      events_.clear();
    }
    auto& event = events_[{since, std::string(frame.language.tag())}];
    if (!event) {
      if (const auto changes = changesBetween(since, version, frame)) {
        event = std::make_shared<const std::string>("data: " + *changes + "\n\n");
      }
    }
    since = version;
    return event;
  };
}

std::uint64_t LiveView::drawnVersion() {
  return drawings_.drawChanges(supervisor_.widgets(), supervisor_.version());
}

std::optional<std::string> LiveView::changesBetween(
    std::uint64_t since, std::uint64_t version, const PageFrame& frame) {
  Array order;
  Dictionary cards;
  for (const WidgetState& card : supervisor_.widgets()) {
    order.emplace_back(card.about->kind);
    if (card.version > since && card.version <= version) {
      cards.set(
          card.about->kind, cardMarkup(modelOf(card, frame.language), frame, currentDate()).html());
    }
  }
  const Dictionary changes{
      {"instance", frame.instance},
      {"since", since},
      {"version", version},
      {"program", supervisor_.programVersion()},
      {"notice", notice(frame.language)},
      {"empty", emptyText(frame.language)},
      {"order", std::move(order)},
      {"cards", std::move(cards)}};
  auto text = writeJson(changes, JsonLayout::compact);
  if (!text) {
    report_("the page's changes cannot be written: " + text.error().reason);
    return std::nullopt;
  }
  return std::move(*text);
}

std::string LiveView::notice(const Language& language) const {
  return noticeOf(supervisor_, signInHint_, language);
}

CardModel LiveView::modelOf(const WidgetState& widget, const Language& language) const {
  const CardDrawings::Drawn* drawn = drawings_.of(widget);
  const std::string signInHint = supervisor_.isSignedOut() ? signInHint_ : "";
  CardModel model{
      .about = widget.about,
      .face = {.status = statusOf(widget, signInHint, language)},
      .reload = widget.reload,
      .awaited = widget.awaited,
      .slowSince = widget.slowSince};
  const RenderedEntry* picture = widget.picture;
  if (picture == nullptr) {
    return model;
  }
  if (drawn == nullptr) {
    model.face.status = {
        WidgetStatus::Level::empty,
        language.text("No picture yet"),
        language.text("It is being drawn.")};
    return model;
  }
  if (drawn->shown.card) {
    model.face.drawing = &*drawn->shown.card;
  } else {
    model.face.status = {
        WidgetStatus::Level::empty,
        language.text("No picture"),
        language.text("This cannot be shown: {1}.", {drawn->shown.problem})};
  }
  if (picture->source == EntrySource::timeline) {
    model.face.updated = picture->received;
  }
  if (widget.kept != nullptr && drawn->kept.card && picture->failure) {
    model.onPhone = std::exchange(
        model.face,
        {.drawing = &*drawn->kept.card,
         .status = statusOfKept(widget, signInHint, language),
         .updated = widget.kept->received,
         .failingSince = picture->failure->since});
  }
  return model;
}

std::string LiveView::emptyText(const Language& language) const {
  if (!supervisor_.widgets().empty()) {
    return "";
  }
  return supervisor_.catalogue().empty()
             ? language.text("The extension is starting…")
             : language.text("No widget is placed. Add some with “Widgets”.");
}

}  // namespace quillpad::home
