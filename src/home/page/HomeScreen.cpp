#include "home/page/HomeScreen.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <ctime>
#include <sys/random.h>
#include <unistd.h>
#include <utility>

#include "home/extension/MemoryUse.h"
#include "home/extension/StateFile.h"
#include "home/extension/WidgetStatus.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/Locale.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

constexpr auto saveDelay = 1s;  // a whole round of fresh entries is saved at once
constexpr auto measurementPause = 100ms;
constexpr auto galleryPatience = 5s;

Now presentMoment() {
  timespec time{};
  ::clock_gettime(CLOCK_BOOTTIME, &time);
  return {
      .date = currentDate(),
      .uptime = std::chrono::duration_cast<Uptime>(
          std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec))};
}

// 128 bits that nobody can guess, in hexadecimal.
std::string secret() {
  std::array<unsigned char, 16> bytes{};
  if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    std::abort();
  }
  std::string text;
  for (const unsigned char byte : bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    text += digits[byte >> 4U];
    text += digits[byte & 15U];
  }
  return text;
}

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
    std::filesystem::path extension, std::uint16_t port) {
  std::unique_ptr<HomeScreen> screen(new HomeScreen(std::move(extension)));
  auto server = WebServer::start(
      port, {}, [self = screen.get()](const WebRequest& request) { return self->answer(request); });
  if (!server) {
    return std::unexpected(server.error());
  }
  screen->server_ = std::make_unique<WebServer>(std::move(*server));
  screen->restore();
  screen->run();
  return screen;
}

HomeScreen::HomeScreen(std::filesystem::path extension)
    : extensionProgram_(std::move(extension)),
      stateFile_(stateFile()),
      token_(secret()),
      instance_(secret()),
      locale_(currentLocale()),
      workbench_(extensionProgram_, {}),
      engineer_(supervisor_, workbench_, cards_, locale_) {}

void HomeScreen::restore() {
  if (!stateFile_) {
    return;
  }
  auto saved = readState(*stateFile_);
  if (!saved) {
    std::fprintf(stderr, "quillpad-home: %s; starting afresh\n", saved.error().c_str());
  } else if (std::optional<SavedHome>& state = *saved) {
    supervisor_.restore(std::move(*state));
  }
}

std::string HomeScreen::address() const {
  return "http://127.0.0.1:" + std::to_string(server_->port()) + "/";
}

// The poll loop's part

void HomeScreen::addDescriptors(std::vector<pollfd>& descriptors) const {
  descriptors.push_back({server_->descriptor(), POLLIN, 0});
  if (extension_) {
    const auto theirs = extension_->descriptors();
    descriptors.insert(descriptors.end(), theirs.begin(), theirs.end());
  }
  workbench_.addDescriptors(descriptors);
}

int HomeScreen::patience() const {
  const Uptime now = presentMoment().uptime;
  std::chrono::milliseconds patience = server_->patience();
  const auto consider = [&](Uptime moment) { patience = std::min(patience, moment - now); };
  if (const auto wakeUp = supervisor_.wakeUp()) {
    consider(*wakeUp);
  }
  if (const auto wakeUp = workbench_.wakeUp()) {
    consider(*wakeUp);
  }
  if (saveAt_) {
    consider(*saveAt_);
  }
  if (extension_ && supervisor_.awaitsAnswers()) {
    consider(nextMeasurement_);
  }
  return static_cast<int>(std::max(patience, 0ms).count());
}

void HomeScreen::run() {
  const Now now = presentMoment();
  server_->run();
  takeExtensionEvents(now);
  measureMemory(now);
  supervisor_.timePassed(now);
  carryOut(now);
  saveWhenDue(now, saveDelay);
  const bool tried = workbench_.run(now);
  if (tried || supervisor_.version() != shownVersion_) {
    shownVersion_ = supervisor_.version();
    server_->wake();
  }
}

void HomeScreen::stop() {
  extension_.reset();
  workbench_.stop();
  saveWhenDue(presentMoment(), 0s);
}

void HomeScreen::takeExtensionEvents(const Now& now) {
  if (!extension_) {
    return;
  }
  for (const ExtensionEvent& event : extension_->takeEvents()) {
    if (const auto* reply = std::get_if<channel::NumberedReply>(&event)) {
      supervisor_.replied(now, *reply);
    } else if (const auto* transfer = std::get_if<channel::TransferNotice>(&event)) {
      supervisor_.transferred(*transfer);
    } else if (const auto* line = std::get_if<PrintedLine>(&event)) {
      std::fprintf(stderr, "%s\n", line->text.c_str());
      supervisor_.printed(line->text);
    } else if (const auto* garbage = std::get_if<Garbage>(&event)) {
      supervisor_.channelBroken(now, garbage->reason);
    } else if (const auto* end = std::get_if<ExtensionEnd>(&event)) {
      extension_.reset();
      supervisor_.ended(now, end->manner());
      return;
    }
  }
}

void HomeScreen::measureMemory(const Now& now) {
  if (extension_ && now.uptime >= nextMeasurement_) {
    nextMeasurement_ = now.uptime + measurementPause;
    supervisor_.memoryMeasured(now, privateMemory(extension_->pid()));
  }
}

void HomeScreen::carryOut(const Now& now) {
  for (auto actions = supervisor_.takeActions(); !actions.empty();
       actions = supervisor_.takeActions()) {
    for (const Supervisor::Action& action : actions) {
      if (std::holds_alternative<Supervisor::StartExtension>(action)) {
        auto started = ExtensionProcess::start(extensionProgram_);
        if (!started) {
          supervisor_.failedToStart(now, started.error());
          break;
        }
        extension_.emplace(std::move(*started));
      } else if (!extension_) {
        continue;
      } else if (const auto* send = std::get_if<Supervisor::Send>(&action)) {
        extension_->send(send->request);
      } else {
        extension_->kill();
      }
    }
  }
}

void HomeScreen::saveWhenDue(const Now& now, std::chrono::milliseconds delay) {
  if (!stateFile_ || supervisor_.savedVersion() == savedVersion_) {
    return;
  }
  if (!saveAt_) {
    saveAt_ = now.uptime + delay;
  }
  if (now.uptime < *saveAt_ && delay > 0s) {
    return;
  }
  saveAt_.reset();
  savedVersion_ = supervisor_.savedVersion();
  if (const auto written = writeState(*stateFile_, supervisor_.saved()); !written) {
    std::fprintf(stderr, "quillpad-home: %s\n", written.error().c_str());
  }
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
    supervisor_.openGallery(presentMoment());
    return galleryAnswer();
  }
  if (request.path == "/events" || request.path == "/changes") {
    const std::string_view since = request.parameter("since");
    std::uint64_t version = 0;
    std::from_chars(since.data(), since.data() + since.size(), version);
    if (request.path == "/events") {
      return eventsSince(version);
    }
    return WebAnswer{
        .contentType = "application/json; charset=utf-8", .body = *changesSince(version)};
  }
  return WebAnswer{.status = 404, .body = "There is nothing here. The home screen is at /.\n"};
}

WebReply HomeScreen::change(const WebRequest& request) {
  if (request.pageToken != token_) {
    return WebAnswer{.status = 403, .body = "Changes need the token of the page. Reload it.\n"};
  }
  const Now now = presentMoment();
  const std::string_view kind = request.parameter("kind");
  bool known = true;
  if (request.path == "/reload") {
    supervisor_.reload(now);
  } else if (request.path == "/place") {
    known = supervisor_.place(now, kind);
  } else if (request.path == "/remove") {
    known = supervisor_.remove(now, kind);
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
      .rightToLeft = isRightToLeft(locale_)};
}

WebAnswer HomeScreen::homeAnswer() {
  const PageFrame frame = newFrame();
  HomeModel model{
      .cards = {},
      .notice = noticeOf(supervisor_.life(), supervisor_.lastEnd()),
      .empty = emptyText(),
      .version = supervisor_.version()};
  for (const Card& card : supervisor_.cards()) {
    model.cards.push_back(modelOf(card));
  }
  WebAnswer answer = html(homePage(model, frame, currentDate()).html);
  answer.headers.emplace_back("Content-Security-Policy", contentPolicy(frame.nonce));
  return answer;
}

// Waits for the snapshots that are still missing, as long as they may still come.
LaterAnswer HomeScreen::galleryAnswer() {
  const Uptime deadline = presentMoment().uptime + galleryPatience;
  return [this, deadline]() -> std::optional<WebAnswer> {
    std::vector<OfferModel> offers;
    for (const channel::CatalogueItem& item : supervisor_.catalogue()) {
      const Picture* snapshot = supervisor_.snapshot(item.kind);
      if (snapshot == nullptr && supervisor_.awaitsAnswers() && presentMoment().uptime < deadline) {
        return std::nullopt;
      }
      auto drawing = offers_.find(item.kind);
      if (snapshot != nullptr && drawing == offers_.end()) {
        if (auto drawn = draw(item, snapshot->view, idPrefixOf(item.kind, "offer-"))) {
          drawing = offers_.emplace(item.kind, std::move(*drawn)).first;
        }
      }
      offers.push_back(
          {.about = &item,
           .drawing = drawing == offers_.end() ? nullptr : &drawing->second,
           .placed = supervisor_.isPlaced(item.kind)});
    }
    return html(galleryMarkup(offers).html);
  };
}

EventStream HomeScreen::eventsSince(std::uint64_t version) {
  return [this, version]() mutable -> std::shared_ptr<const std::string> {
    if (version == supervisor_.version()) {
      return nullptr;
    }
    if (changesVersion_ != supervisor_.version()) {
      changesVersion_ = supervisor_.version();
      changes_.clear();
    }
    auto& event = changes_[version];
    if (!event) {
      event = std::make_shared<const std::string>("data: " + *changesSince(version) + "\n\n");
    }
    version = supervisor_.version();
    return event;
  };
}

std::shared_ptr<const std::string> HomeScreen::changesSince(std::uint64_t version) {
  Array order;
  Dictionary cards;
  for (const Card& card : supervisor_.cards()) {
    order.emplace_back(card.about->kind);
    if (card.version > version || version > supervisor_.version()) {
      cards.set(card.about->kind, cardMarkup(modelOf(card), currentDate()).html);
    }
  }
  const Dictionary changes{
      {"instance", instance_},
      {"version", supervisor_.version()},
      {"notice", noticeOf(supervisor_.life(), supervisor_.lastEnd())},
      {"empty", emptyText()},
      {"order", std::move(order)},
      {"cards", std::move(cards)}};
  return std::make_shared<const std::string>(
      writeJson(changes, JsonLayout::compact).value_or("{}"));
}

CardModel HomeScreen::modelOf(const Card& card) {
  CardModel model{
      .about = card.about,
      .drawing = drawnCard(card),
      .status = statusOf(card),
      .updated = std::nullopt,
      .reload = card.reload};
  if (card.picture != nullptr && card.picture->source == Picture::Source::timeline) {
    model.updated = card.picture->received;
  }
  return model;
}

const DrawnCard* HomeScreen::drawnCard(const Card& card) {
  Drawn& drawn = drawings_[card.about->kind];
  if (drawn.version != card.version) {
    drawn.version = card.version;
    drawn.card = card.picture == nullptr
                     ? std::nullopt
                     : draw(*card.about, card.picture->view, idPrefixOf(card.about->kind, "card-"));
  }
  return drawn.card ? &*drawn.card : nullptr;
}

std::optional<DrawnCard> HomeScreen::draw(
    const channel::CatalogueItem& about, const ui::View& view, const std::string& idPrefix) {
  const ui::WidgetFamily family =
      about.families.empty() ? ui::WidgetFamily::systemSmall : about.families.front();
  const drawing::DisplayList list = cards_.compose(
      view,
      {.kind = about.kind,
       .family = std::string(channel::familyName(family)),
       .size = defaultSize(family)},
      locale_);
  auto picture = cards_.writeForPage(list, idPrefix);
  if (!picture) {
    return std::nullopt;
  }
  return DrawnCard{.picture = {std::move(*picture)}, .link = list.link};
}

std::string HomeScreen::emptyText() const {
  if (!supervisor_.cards().empty()) {
    return "";
  }
  return supervisor_.catalogue().empty() ? "The extension is starting…"
                                         : "No widget is placed. Add some with “Widgets”.";
}

}  // namespace quillpad::home
