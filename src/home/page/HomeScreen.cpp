#include "home/page/HomeScreen.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <unistd.h>
#include <utility>

#include "home/extension/StateFile.h"
#include "home/extension/WidgetStatus.h"
#include "home/page/WidgetSizes.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/Locale.h"
#include "platform/foundation/Random.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

constexpr auto galleryPatience = 5s;
constexpr std::size_t maxKeptChanges = 100;

// 128 bits that nobody can guess.
std::string secret() { return randomHex(16); }

// An id that may stand in SVG, whatever the kind is made of.
std::string idPrefixOf(std::string_view kind, std::string_view use) {
  std::string prefix(use);
  for (const char character : kind) {
    const bool plain = (character >= 'a' && character <= 'z') ||
                       (character >= 'A' && character <= 'Z') ||
                       (character >= '0' && character <= '9');
    prefix += plain ? std::string(1, character)
                    : "-" + std::to_string(static_cast<unsigned char>(character)) + "-";
  }
  return prefix + "-";
}

WebAnswer html(std::string body) {
  return {.contentType = "text/html; charset=utf-8", .body = std::move(body)};
}

}  // namespace

std::expected<std::unique_ptr<HomeScreen>, std::string> HomeScreen::start(
    const std::filesystem::path& extension, std::uint16_t port, std::string droppedHint) {
  std::unique_ptr<HomeScreen> screen(new HomeScreen(extension, std::move(droppedHint)));
  auto server = WebServer::start(
      port, {}, [self = screen.get()](const WebRequest& request) { return self->answer(request); });
  if (!server) {
    return std::unexpected(server.error());
  }
  screen->server_ = std::make_unique<WebServer>(std::move(*server));
  screen->run();
  return screen;
}

HomeScreen::HomeScreen(const std::filesystem::path& extension, std::string droppedHint)
    : token_(secret()),
      instance_(secret()),
      locale_(currentLocale()),
      droppedHint_(std::move(droppedHint)),
      relay_(STDERR_FILENO),
      widgets_(
          extension,
          stateFile(),
          [this](std::string_view line) { relay_.add(presentMoment().uptime, line); }),
      previews_(extension),
      engineer_(widgets_.supervisor(), previews_, cards_, locale_) {}

std::string HomeScreen::address() const {
  return "http://127.0.0.1:" + std::to_string(server_->port()) + "/";
}

// The poll loop's part

void HomeScreen::addDescriptors(std::vector<pollfd>& descriptors) const {
  descriptors.push_back({server_->descriptor(), POLLIN, 0});
  descriptors.push_back(relay_.descriptor());
  widgets_.addDescriptors(descriptors);
  previews_.addDescriptors(descriptors);
}

int HomeScreen::pollTimeout() const {
  std::chrono::milliseconds timeout = server_->pollTimeout();
  const Uptime now = presentMoment().uptime;
  for (const auto deadline : {widgets_.nextDeadline(), previews_.nextDeadline()}) {
    if (deadline) {
      timeout = std::min(timeout, *deadline - now);
    }
  }
  return static_cast<int>(std::max(timeout, 0ms).count());
}

void HomeScreen::run() {
  const Moment now = presentMoment();
  server_->run();
  relay_.run();
  widgets_.run(now);
  const bool previewed = previews_.run(now);
  if (previewed || supervisor().version() != shownVersion_) {
    shownVersion_ = supervisor().version();
    server_->wake();
  }
}

void HomeScreen::stop() {
  previews_.stop();
  widgets_.stop(presentMoment());
}

// The page's part

WebReply HomeScreen::answer(const WebRequest& request) {
  if (request.method == "POST") {
    return change(request);
  }
  if (request.path == "/") {
    if (request.parameter("view") == "engineer") {
      return engineer_.page(presentMoment(), request, newFrame());
    }
    return homeAnswer();
  }
  if (request.path == "/picture.svg" || request.path == "/picture.png") {
    return engineer_.picture(
        presentMoment(),
        request,
        request.path.ends_with("svg") ? PictureFormat::svg : PictureFormat::png);
  }
  if (request.path == "/gallery") {
    supervisor().openGallery(presentMoment());
    return galleryAnswer();
  }
  if (request.path == "/events" || request.path == "/changes") {
    const std::uint64_t version = seenVersion(request);
    if (request.path == "/events") {
      return eventsSince(version);
    }
    return WebAnswer{
        .contentType = "application/json; charset=utf-8", .body = *changesSince(version)};
  }
  return WebAnswer{.status = 404, .body = "There is nothing here. The home screen is at /.\n"};
}

// The version that the page has seen; 0, which is before all, where that was in another run.
std::uint64_t HomeScreen::seenVersion(const WebRequest& request) const {
  const std::string_view since = request.parameter("since");
  const std::string_view run = request.parameter("instance");
  std::uint64_t version = 0;
  std::from_chars(since.data(), since.data() + since.size(), version);
  const bool isOfThisRun = run.empty() || run == instance_;
  return isOfThisRun && version <= supervisor().version() ? version : 0;
}

WebReply HomeScreen::change(const WebRequest& request) {
  if (request.pageToken != token_) {
    return WebAnswer{.status = 403, .body = "Changes need the token of the page. Reload it.\n"};
  }
  const Moment now = presentMoment();
  const std::string_view kind = request.parameter("kind");
  bool known = true;
  if (request.path == "/reload") {
    supervisor().reload(now);
  } else if (request.path == "/place") {
    known = supervisor().place(now, kind);
  } else if (request.path == "/remove") {
    known = supervisor().remove(now, kind);
  } else {
    known = false;
  }
  return known ? WebAnswer{.status = 204, .body = ""}
               : WebAnswer{.status = 404, .body = "There is no such widget or change.\n"};
}

PageFrame HomeScreen::newFrame() const {
  return {
      .token = token_,
      .instance = instance_,
      .nonce = secret(),
      .rightToLeft = isMirrored(locale_)};
}

WebAnswer HomeScreen::homeAnswer() {
  const PageFrame frame = newFrame();
  HomeModel model{
      .cards = {},
      .notice = noticeOf(supervisor().life(), supervisor().lastEnd()),
      .empty = emptyText(),
      .version = supervisor().version()};
  for (const WidgetState& card : supervisor().widgets()) {
    model.cards.push_back(modelOf(card));
  }
  WebAnswer answer = html(homePage(model, frame, currentDate()).html());
  answer.headers.emplace_back("Content-Security-Policy", contentPolicy(frame.nonce));
  return answer;
}

// Waits for the snapshots that are still missing, as long as they may still come.
LaterAnswer HomeScreen::galleryAnswer() {
  const Uptime deadline = presentMoment().uptime + galleryPatience;
  return [this, deadline]() -> std::optional<WebAnswer> {
    std::vector<OfferModel> offers;
    for (const channel::CatalogueItem& item : supervisor().catalogue()) {
      const Picture* snapshot = supervisor().snapshot(item.kind);
      if (snapshot == nullptr && supervisor().awaitsAnswers() &&
          presentMoment().uptime < deadline) {
        return std::nullopt;
      }
      auto drawing = offers_.find(item.kind);
      if (snapshot != nullptr && drawing == offers_.end()) {
        if (auto drawn = draw(item, *snapshot, idPrefixOf(item.kind, "offer-"))) {
          drawing = offers_.emplace(item.kind, std::move(*drawn)).first;
        }
      }
      offers.push_back(
          {.about = &item,
           .drawing = drawing == offers_.end() ? nullptr : &drawing->second,
           .placed = supervisor().isPlaced(item.kind)});
    }
    return html(galleryMarkup(offers).html());
  };
}

EventStream HomeScreen::eventsSince(std::uint64_t version) {
  return [this, version]() mutable -> std::shared_ptr<const std::string> {
    if (version == supervisor().version()) {
      return nullptr;
    }
    if (changesVersion_ != supervisor().version() || changes_.size() > maxKeptChanges) {
      changesVersion_ = supervisor().version();
      changes_.clear();
    }
    auto& event = changes_[version];
    if (!event) {
      event = std::make_shared<const std::string>("data: " + *changesSince(version) + "\n\n");
    }
    version = supervisor().version();
    return event;
  };
}

std::shared_ptr<const std::string> HomeScreen::changesSince(std::uint64_t version) {
  Array order;
  Dictionary cards;
  for (const WidgetState& card : supervisor().widgets()) {
    order.emplace_back(card.about->kind);
    if (card.version > version) {
      cards.set(card.about->kind, cardMarkup(modelOf(card), currentDate()).html());
    }
  }
  const Dictionary changes{
      {"instance", instance_},
      {"version", supervisor().version()},
      {"notice", noticeOf(supervisor().life(), supervisor().lastEnd())},
      {"empty", emptyText()},
      {"order", std::move(order)},
      {"cards", std::move(cards)}};
  return std::make_shared<const std::string>(
      writeJson(changes, JsonLayout::compact).value_or("{}"));
}

CardModel HomeScreen::modelOf(const WidgetState& card) {
  CardModel model{
      .about = card.about,
      .drawing = drawnCard(card),
      .status = statusOf(card, droppedHint_),
      .updated = std::nullopt,
      .reload = card.reload};
  if (card.picture != nullptr && card.picture->source == Picture::Source::timeline) {
    model.updated = card.picture->received;
  }
  return model;
}

const DrawnCard* HomeScreen::drawnCard(const WidgetState& card) {
  Drawn& drawn = drawings_[card.about->kind];
  if (drawn.version != card.version) {
    drawn.version = card.version;
    drawn.card = card.picture == nullptr
                     ? std::nullopt
                     : draw(*card.about, *card.picture, idPrefixOf(card.about->kind, "card-"));
  }
  return drawn.card ? &*drawn.card : nullptr;
}

std::optional<DrawnCard> HomeScreen::draw(
    const channel::CatalogueItem& about, const Picture& picture, const std::string& idPrefix) {
  const ui::WidgetFamily family = familyOf(about);
  const drawing::DisplayList list = cards_.compose(
      picture.view,
      {.kind = about.kind,
       .family = std::string(ui::familyName(family)),
       .size = widgetSize(family),
       .redaction = picture.source == Picture::Source::placeholder ? drawing::Redaction::placeholder
                                                                   : drawing::Redaction::none},
      locale_);
  auto document = cards_.writeForPage(list, idPrefix);
  if (!document) {
    return std::nullopt;
  }
  return DrawnCard{.picture = trusted(std::move(*document)), .link = list.link};
}

std::string HomeScreen::emptyText() const {
  if (!supervisor().widgets().empty()) {
    return "";
  }
  return supervisor().catalogue().empty() ? "The extension is starting…"
                                          : "No widget is placed. Add some with “Widgets”.";
}

}  // namespace quillpad::home
