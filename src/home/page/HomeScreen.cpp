#include "home/page/HomeScreen.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <unistd.h>
#include <utility>

#include "home/extension/StateFile.h"
#include "home/extension/WidgetStatus.h"
#include "home/page/ProcessPage.h"
#include "platform/foundation/Bundle.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/Locale.h"
#include "platform/os/Random.h"
#include "platform/os/UserFolders.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

constexpr auto galleryTimeout = 5s;
constexpr std::size_t maxKeptChanges = 100;

// 128 bits that nobody can guess.
std::string secret() { return randomHex(16); }

// What the extension looks up, what this program draws, and the samples.
std::vector<std::filesystem::path> resourcesOf(
    const std::filesystem::path& extension, const SampleFolder& samples) {
  std::error_code error;
  return {
      Bundle::ofProgram(std::filesystem::canonical(extension, error)).folder(),
      Bundle::main().folder(),
      samples.folder()};
}

WebAnswer html(std::string body) {
  return {.contentType = "text/html; charset=utf-8", .body = std::move(body)};
}

}  // namespace

std::expected<std::unique_ptr<HomeScreen>, std::string> HomeScreen::start(
    const std::filesystem::path& extension,
    std::uint16_t port,
    const Account& account,
    const SampleFolder& samples,
    std::unique_ptr<Switchboard> switchboard) {
  std::unique_ptr<HomeScreen> screen(
      new HomeScreen(extension, account, samples, std::move(switchboard)));
  auto server = WebServer::start(
      port, {}, [self = screen.get()](const WebRequest& request) { return self->answer(request); });
  if (!server) {
    return std::unexpected(server.error());
  }
  screen->server_ = std::make_unique<WebServer>(std::move(*server));
  screen->run();
  return screen;
}

HomeScreen::HomeScreen(
    const std::filesystem::path& extension,
    const Account& account,
    const SampleFolder& samples,
    std::unique_ptr<Switchboard> switchboard)
    : access_(userStateFolder()),
      token_(secret()),
      instance_(secret()),
      locale_(currentLocale()),
      signInHint_(account.hint),
      relay_(STDERR_FILENO),
      program_(extension, resourcesOf(extension, samples)),
      widgets_(
          extension,
          stateFile(),
          account,
          [this](std::string_view line) { relay_.add(presentMoment().uptime, line); }),
      previews_(extension),
      drawings_(cards_, locale_, [this](const std::string& line) { report(line); }),
      engineer_(widgets_.supervisor(), previews_, cards_, samples, locale_),
      canvas_(widgets_.supervisor(), previews_, engineer_, samples),
      switchboard_(std::move(switchboard)) {}

std::string HomeScreen::address(HomeView view) const {
  return "http://127.0.0.1:" + std::to_string(server_->port()) + "/?" +
         (view == HomeView::wall ? "view=wall&" : "") + "key=" + access_.key();
}

// The poll loop's part

void HomeScreen::addDescriptors(std::vector<pollfd>& descriptors) const {
  descriptors.push_back({server_->descriptor(), POLLIN, 0});
  descriptors.push_back(relay_.descriptor());
  descriptors.push_back(program_.descriptor());
  if (switchboard_) {
    descriptors.push_back(switchboard_->descriptor());
  }
  widgets_.addDescriptors(descriptors);
  previews_.addDescriptors(descriptors);
}

int HomeScreen::pollTimeout() const {
  std::chrono::milliseconds timeout = server_->pollTimeout();
  const Uptime now = presentMoment().uptime;
  for (const auto deadline :
       {relay_.nextDeadline(),
        program_.nextDeadline(),
        widgets_.nextDeadline(),
        previews_.nextDeadline()}) {
    if (deadline) {
      timeout = std::min(timeout, *deadline - now);
    }
  }
  return static_cast<int>(std::max(timeout, 0ms).count());
}

void HomeScreen::run() {
  const Moment now = presentMoment();
  server_->run();
  relay_.run(now.uptime);
  if (program_.run(now.uptime)) {
    takeUpProgram(now);
  }
  widgets_.run(now);
  const bool previewed = previews_.run(now);
  const bool switched = switchboard_ && switchboard_->run();
  if (previewed || switched || supervisor().version() != shownVersion_) {
    shownVersion_ = supervisor().version();
    server_->wake();
  }
}

void HomeScreen::takeUpProgram(const Moment& now) {
  relay_.add(now.uptime, "quillpad-home: the extension or its resources changed; starting it anew");
  cards_.forgetPictures();
  drawings_.keepOnly([this](std::string_view kind) { return supervisor().isPlaced(kind); });
  previews_.programReplaced();
  widgets_.supervisor().programReplaced(now);
}

void HomeScreen::stop() {
  previews_.stop();
  widgets_.stop(presentMoment());
}

// The page's part

WebReply HomeScreen::answer(const WebRequest& request) {
  if (!access_.admits(request, server_->port())) {
    return WebAnswer{
        .status = 401,
        .body =
            "The home screen is its owner's alone. Open it at the address that it printed when "
            "it started; the key is part of it.\n"};
  }
  return answerToOwner(request);
}

WebReply HomeScreen::answerToOwner(const WebRequest& request) {
  if (request.method == "POST") {
    return change(request);
  }
  if (request.path == "/") {
    const std::string_view view = request.parameter("view");
    if (view == "engineer") {
      return engineer_.page(presentMoment(), request, newFrame(request));
    }
    if (view == "canvas") {
      return canvas_.page(presentMoment(), request, newFrame(request));
    }
    if (view == "process") {
      return processAnswer(newFrame(request));
    }
    return homeAnswer(request, view == "wall" ? HomeView::wall : HomeView::desk);
  }
  if (request.path == "/picture.svg" || request.path == "/picture.png") {
    return engineer_.picture(
        presentMoment(),
        request,
        request.path.ends_with("svg") ? PictureFormat::svg : PictureFormat::png);
  }
  if (request.path == "/canvas.zip") {
    return canvas_.archive(presentMoment(), request);
  }
  if (request.path == "/gallery") {
    supervisor().openGallery(presentMoment());
    return galleryAnswer(newFrame(request));
  }
  if (request.path == "/switchboard" && switchboard_) {
    return switchboard_->form(presentMoment(), newFrame(request));
  }
  if (request.path == "/events" || request.path == "/changes") {
    const std::uint64_t version = seenVersion(request);
    if (request.path == "/events") {
      return eventsSince(version, newFrame(request));
    }
    auto changes = changesSince(version, newFrame(request));
    return changes
               ? WebAnswer{.contentType = "application/json; charset=utf-8", .body = std::move(*changes)}
               : WebAnswer{.status = 500, .body = "The changes cannot be written.\n"};
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
  if (request.path == "/switchboard" && switchboard_) {
    return switchboard_->change(now, request, newFrame(request));
  }
  const std::string_view kind = request.parameter("kind");
  bool known = true;
  if (request.path == "/reload") {
    if (kind.empty()) {
      supervisor().reload(now);
    } else {
      known = supervisor().reload(now, kind);
    }
  } else if (request.path == "/place") {
    known = supervisor().place(now, kind);
  } else if (request.path == "/remove") {
    known = supervisor().remove(now, kind);
  } else if (request.path == "/move") {
    known = supervisor().move(kind, request.parameter("before"));
  } else {
    known = false;
  }
  return known ? WebAnswer{.status = 204, .body = ""}
               : WebAnswer{.status = 404, .body = "There is no such widget or change.\n"};
}

PageFrame HomeScreen::newFrame(const WebRequest& request) const {
  const std::string chosen(request.parameter("lang"));
  const Language language = Language::preferred(chosen + "," + request.acceptLanguage);
  return {
      .token = token_,
      .instance = instance_,
      .version = supervisor().version(),
      .nonce = secret(),
      .cookie = access_.cookie(server_->port()),
      .language = language,
      .chosenLanguage = chosen.empty() ? "" : std::string(language.tag()),
      .cardLanguage = Bundle::main().localization(locale_).value_or("en")};
}

WebAnswer HomeScreen::homeAnswer(const WebRequest& request, HomeView view) {
  const PageFrame frame = newFrame(request);
  HomeModel model{
      .view = view,
      .cards = {},
      .notice = noticeOf(supervisor(), signInHint_, frame.language),
      .empty = emptyText(frame.language)};
  for (const WidgetState& card : supervisor().widgets()) {
    model.cards.push_back(modelOf(card, frame.language));
  }
  WebAnswer answer = html(homePage(model, frame, currentDate()).html());
  answer.headers = pageHeaders(frame);
  return answer;
}

WebAnswer HomeScreen::processAnswer(const PageFrame& frame) const {
  const auto memory = widgets_.privateMemory();
  ProcessModel model{
      .runs = memory.has_value(),
      .privateBytes = memory.value_or(0),
      .limitBytes = ExtensionSession::defaultMemoryLimit,
      .switchboard = switchboard_ != nullptr,
      .underWay = supervisor().underWay(),
      .log = widgets_.log()};
  for (const auto& [kind, timelines] : widgets_.log().timelinesOfTheDay(currentDate())) {
    model.budgets.push_back({kind, timelines});
  }
  WebAnswer answer = html(processPage(model, frame).html());
  answer.headers = pageHeaders(frame);
  return answer;
}

// Waits for the snapshots that are still missing, as long as they may still come.
LaterAnswer HomeScreen::galleryAnswer(const PageFrame& frame) {
  const Uptime deadline = presentMoment().uptime + galleryTimeout;
  const auto take = [this, deadline, frame]() -> std::optional<WebAnswer> {
    std::vector<OfferModel> offers;
    for (const channel::CatalogueItem& item : supervisor().catalogue()) {
      const RenderedEntry* snapshot = supervisor().snapshot(item.kind);
      if (snapshot == nullptr && supervisor().awaitsAnswers() &&
          presentMoment().uptime < deadline) {
        return std::nullopt;
      }
      offers.push_back(
          {.about = &item,
           .drawing = snapshot == nullptr
                          ? nullptr
                          : drawings_.ofSnapshot(item, *snapshot, supervisor().snapshotVersion()),
           .placed = supervisor().isPlaced(item.kind)});
    }
    return html(galleryMarkup(offers, frame).html());
  };
  return {.take = take, .timeout = galleryTimeout};
}

EventStream HomeScreen::eventsSince(std::uint64_t version, const PageFrame& frame) {
  return [this, version, frame]() mutable -> std::shared_ptr<const std::string> {
    if (version == supervisor().version()) {
      return nullptr;
    }
    if (changesVersion_ != supervisor().version() || changes_.size() > maxKeptChanges) {
      changesVersion_ = supervisor().version();
      changes_.clear();
    }
    auto& event = changes_[{version, std::string(frame.language.tag())}];
    if (!event) {
      if (const auto changes = changesSince(version, frame)) {
        event = std::make_shared<const std::string>("data: " + *changes + "\n\n");
      }
    }
    version = supervisor().version();
    return event;
  };
}

std::optional<std::string> HomeScreen::changesSince(std::uint64_t version, const PageFrame& frame) {
  Array order;
  Dictionary cards;
  for (const WidgetState& card : supervisor().widgets()) {
    order.emplace_back(card.about->kind);
    if (card.version > version) {
      cards.set(
          card.about->kind, cardMarkup(modelOf(card, frame.language), frame, currentDate()).html());
    }
  }
  const Dictionary changes{
      {"instance", instance_},
      {"since", version},
      {"version", supervisor().version()},
      {"program", supervisor().programVersion()},
      {"notice", noticeOf(supervisor(), signInHint_, frame.language)},
      {"empty", emptyText(frame.language)},
      {"order", std::move(order)},
      {"cards", std::move(cards)}};
  auto text = writeJson(changes, JsonLayout::compact);
  if (!text) {
    report("the page's changes cannot be written: " + text.error().reason);
    return std::nullopt;
  }
  return std::move(*text);
}

void HomeScreen::report(const std::string& line) {
  relay_.add(presentMoment().uptime, "quillpad-home: " + line);
}

CardModel HomeScreen::modelOf(const WidgetState& widget, const Language& language) {
  const CardDrawings::Drawn& drawn = drawings_.of(widget);
  const std::string signInHint = supervisor().isSignedOut() ? signInHint_ : "";
  CardModel model{
      .about = widget.about,
      .face =
          {.drawing = drawn.card ? &*drawn.card : nullptr,
           .status = statusOf(widget, signInHint, language)},
      .reload = widget.reload,
      .awaited = widget.awaited,
      .slowSince = widget.slowSince};
  const RenderedEntry* picture = widget.picture;
  if (picture != nullptr && picture->source == EntrySource::timeline) {
    model.face.updated = picture->received;
  }
  if (widget.kept != nullptr && drawn.kept && picture != nullptr && picture->failure) {
    model.onPhone = std::exchange(
        model.face,
        {.drawing = &*drawn.kept,
         .status = statusOfKept(widget, signInHint, language),
         .updated = widget.kept->received,
         .failingSince = picture->failure->since});
  }
  return model;
}

std::string HomeScreen::emptyText(const Language& language) const {
  if (!supervisor().widgets().empty()) {
    return "";
  }
  return supervisor().catalogue().empty()
             ? language.text("The extension is starting…")
             : language.text("No widget is placed. Add some with “Widgets”.");
}

}  // namespace quillpad::home
