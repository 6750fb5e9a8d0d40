#include "home/page/HomeScreen.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <unistd.h>
#include <utility>

#include "home/extension/StateFile.h"
#include "home/page/ProcessPage.h"
#include "platform/foundation/Bundle.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Locale.h"
#include "platform/os/Random.h"
#include "platform/os/UserFolders.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

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

WebAnswer nothingHere() {
  return {.status = 404, .body = "There is nothing here. The home screen is at /.\n"};
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
      relay_(STDERR_FILENO),
      program_(extension, resourcesOf(extension, samples)),
      widgets_(
          extension,
          stateFile(),
          account,
          [this](std::string_view line) { relay_.add(presentMoment().uptime, line); }),
      previews_(extension),
      live_(
          widgets_.supervisor(),
          cards_,
          locale_,
          account.hint,
          [this](const std::string& line) { report(line); }),
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
  if (live_.isBehind()) {
    return 0;
  }
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
  const bool hasDrawn = live_.beginTurn();
  server_->run();
  relay_.run(now.uptime);
  if (program_.run(now.uptime)) {
    takeUpProgram(now);
  }
  widgets_.run(now);
  const bool previewed = previews_.run(now);
  const bool switched = switchboard_ && switchboard_->run();
  if (hasDrawn || previewed || switched || supervisor().version() != shownVersion_) {
    shownVersion_ = supervisor().version();
    server_->wake();
  }
}

void HomeScreen::takeUpProgram(const Moment& now) {
  relay_.add(now.uptime, "quillpad-home: the extension or its resources changed; starting it anew");
  cards_.forgetPictures();
  live_.forgetRemoved();
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
  using Answer = WebReply (HomeScreen::*)(const WebRequest&);
  static constexpr std::pair<std::string_view, Answer> answers[]{
      {"/", &HomeScreen::page},
      {"/changes", &HomeScreen::changes},
      {"/events", &HomeScreen::events},
      {"/gallery", &HomeScreen::gallery},
      {"/picture.svg", &HomeScreen::picture},
      {"/picture.png", &HomeScreen::picture},
      {"/canvas.zip", &HomeScreen::archive},
      {"/switchboard", &HomeScreen::switchboardForm}};
  if (request.method == "POST") {
    return change(request);
  }
  for (const auto& [path, answer] : answers) {
    if (path == request.path) {
      return (this->*answer)(request);
    }
  }
  return nothingHere();
}

WebReply HomeScreen::page(const WebRequest& request) {
  const std::string_view view = request.parameter("view");
  const PageFrame frame = newFrame(request);
  if (view == "engineer") {
    return engineer_.page(presentMoment(), request, frame);
  }
  if (view == "canvas") {
    return canvas_.page(presentMoment(), request, frame);
  }
  if (view == "process") {
    return processAnswer(frame);
  }
  return live_.page(view == "wall" ? HomeView::wall : HomeView::desk, frame);
}

WebReply HomeScreen::changes(const WebRequest& request) {
  return live_.changes(seenVersion(request), newFrame(request));
}

WebReply HomeScreen::events(const WebRequest& request) {
  return live_.events(seenVersion(request), newFrame(request));
}

WebReply HomeScreen::gallery(const WebRequest& request) {
  supervisor().openGallery(presentMoment());
  return live_.gallery(newFrame(request));
}

WebReply HomeScreen::picture(const WebRequest& request) {
  return engineer_.picture(
      presentMoment(),
      request,
      request.path.ends_with("svg") ? PictureFormat::svg : PictureFormat::png);
}

WebReply HomeScreen::archive(const WebRequest& request) {
  return canvas_.archive(presentMoment(), request);
}

WebReply HomeScreen::switchboardForm(const WebRequest& request) {
  return switchboard_ ? switchboard_->form(presentMoment(), newFrame(request)) : nothingHere();
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
  return changeWidgets(now, request)
             ? WebAnswer{.status = 204, .body = ""}
             : WebAnswer{.status = 404, .body = "There is no such widget or change.\n"};
}

bool HomeScreen::changeWidgets(const Moment& now, const WebRequest& request) {
  const std::string_view kind = request.parameter("kind");
  if (request.path == "/reload" && kind.empty()) {
    supervisor().reload(now);
    return true;
  }
  return (request.path == "/reload" && supervisor().reload(now, kind)) ||
         (request.path == "/place" && supervisor().place(kind)) ||
         (request.path == "/remove" && supervisor().remove(kind)) ||
         (request.path == "/move" && supervisor().move(kind, request.parameter("before")));
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
      .notice = live_.notice(language),
      .language = language,
      .chosenLanguage = chosen.empty() ? "" : std::string(language.tag()),
      .cardLanguage = Bundle::main().localization(locale_).value_or("en")};
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
  return pageAnswer(processPage(model, frame), frame);
}

void HomeScreen::report(const std::string& line) {
  relay_.add(presentMoment().uptime, "quillpad-home: " + line);
}

}  // namespace quillpad::home
