// The live home screen: the placed widgets and their page, for a person to look at and to change.
// Driven by its owner's poll loop; nothing of it runs on another thread and nothing blocks for
// long. Belongs to the thread that made it.
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

#include "home/extension/LineRelay.h"
#include "home/extension/Moment.h"
#include "home/extension/PreviewSession.h"
#include "home/extension/WidgetHost.h"
#include "home/extension/WidgetState.h"
#include "home/page/CardRenderer.h"
#include "home/page/EngineerView.h"
#include "home/page/Page.h"
#include "home/server/WebServer.h"

namespace quillpad::home {

class HomeScreen {
 public:
  // Takes up the state of the last run and listens at the port; on failure one line that tells why.
  // The hint is said where the extension drops a request: why that may be and what helps.
  static std::expected<std::unique_ptr<HomeScreen>, std::string> start(
      const std::filesystem::path& extension, std::uint16_t port, std::string droppedHint);

  // Of the page.
  std::string address() const;

  // What to poll for, and for how many milliseconds at most.
  void addDescriptors(std::vector<pollfd>& descriptors) const;
  int pollTimeout() const;

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

  HomeScreen(const std::filesystem::path& extension, std::string droppedHint);
  Supervisor& supervisor() { return widgets_.supervisor(); }
  const Supervisor& supervisor() const { return widgets_.supervisor(); }
  WebReply answer(const WebRequest& request);
  WebReply change(const WebRequest& request);
  WebAnswer homeAnswer();
  PageFrame newFrame() const;
  LaterAnswer galleryAnswer();
  std::uint64_t seenVersion(const WebRequest& request) const;
  EventStream eventsSince(std::uint64_t version);
  std::shared_ptr<const std::string> changesSince(std::uint64_t version);

  CardModel modelOf(const WidgetState& widget);
  const DrawnCard* drawnCard(const WidgetState& widget);
  std::optional<DrawnCard> draw(
      const channel::CatalogueItem& about, const Picture& picture, const std::string& idPrefix);
  std::string emptyText() const;

  std::string token_;
  std::string instance_;
  std::string locale_;
  std::string droppedHint_;

  LineRelay relay_;
  WidgetHost widgets_;
  PreviewSession previews_;
  CardRenderer cards_;
  EngineerView engineer_;
  std::map<std::string, Drawn, std::less<>> drawings_;
  std::map<std::string, DrawnCard, std::less<>> offers_;
  std::unique_ptr<WebServer> server_;

  std::uint64_t shownVersion_ = 0;
  // The events that lead to a version, by the version that a tab has seen before.
  std::uint64_t changesVersion_ = 0;
  std::map<std::uint64_t, std::shared_ptr<const std::string>> changes_;
};

}  // namespace quillpad::home
