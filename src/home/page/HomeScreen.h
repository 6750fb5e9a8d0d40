// The live home screen: puts the supervisor to work on a real extension and shows what it holds on
// the page. Driven by its owner's poll loop; nothing of it runs on another thread and nothing
// blocks for long. Belongs to the thread that made it.
#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <string_view>
#include <vector>

#include "home/extension/ExtensionProcess.h"
#include "home/extension/Supervisor.h"
#include "home/extension/Workbench.h"
#include "home/page/CardRenderer.h"
#include "home/page/EngineerView.h"
#include "home/page/Page.h"
#include "home/server/WebServer.h"

namespace quillpad::home {

class HomeScreen {
 public:
  // Takes up the state of the last run and listens at the port; on failure one line that tells why.
  static std::expected<std::unique_ptr<HomeScreen>, std::string> start(
      std::filesystem::path extension, std::uint16_t port);

  // Of the page.
  std::string address() const;

  // What to poll for, and for how many milliseconds at most.
  void addDescriptors(std::vector<pollfd>& descriptors) const;
  int patience() const;

  // Takes what has come and does what is due. To be called after each poll.
  void run();

  // Ends the extension and keeps the state.
  void stop();

  HomeScreen(const HomeScreen&) = delete;
  HomeScreen& operator=(const HomeScreen&) = delete;

 private:
  // A widget's drawing, as of a version of its card.
  struct Drawn {
    std::uint64_t version = 0;
    std::optional<DrawnCard> card;
  };

  explicit HomeScreen(std::filesystem::path extension);
  void restore();
  void takeExtensionEvents(const Now& now);
  void measureMemory(const Now& now);
  void carryOut(const Now& now);
  void saveWhenDue(const Now& now, std::chrono::milliseconds delay);

  WebReply answer(const WebRequest& request);
  WebReply change(const WebRequest& request);
  WebAnswer homeAnswer();
  PageFrame newFrame() const;
  LaterAnswer galleryAnswer();
  EventStream eventsSince(std::uint64_t version);
  std::shared_ptr<const std::string> changesSince(std::uint64_t version);

  CardModel modelOf(const Card& card);
  const DrawnCard* drawnCard(const Card& card);
  std::optional<DrawnCard> draw(
      const channel::CatalogueItem& about, const ui::View& view, const std::string& idPrefix);
  std::string emptyText() const;

  std::filesystem::path extensionProgram_;
  std::optional<std::filesystem::path> stateFile_;
  std::string token_;
  std::string instance_;
  std::string locale_;

  Supervisor supervisor_;
  std::optional<ExtensionProcess> extension_;
  CardRenderer cards_;
  Workbench workbench_;
  EngineerView engineer_;
  std::map<std::string, Drawn, std::less<>> drawings_;
  std::map<std::string, DrawnCard, std::less<>> offers_;
  std::unique_ptr<WebServer> server_;

  std::uint64_t shownVersion_ = 0;
  std::uint64_t savedVersion_ = 0;
  std::optional<Uptime> saveAt_;
  Uptime nextMeasurement_{};
  // The events that lead to a version, by the version that a tab has seen before.
  std::uint64_t changesVersion_ = 0;
  std::map<std::uint64_t, std::shared_ptr<const std::string>> changes_;
};

}  // namespace quillpad::home
