// The live home screen: the placed widgets and their page, for a person to look at and to change.
// Driven by its owner's poll loop; nothing of it runs on another thread and nothing blocks for
// long. Belongs to the thread that made it.
#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "home/cards/CardRenderer.h"
#include "home/extension/Account.h"
#include "home/extension/ExtensionDriver.h"
#include "home/extension/LineRelay.h"
#include "home/extension/Moment.h"
#include "home/extension/PreviewSession.h"
#include "home/extension/ProgramWatch.h"
#include "home/page/CanvasView.h"
#include "home/page/EngineerView.h"
#include "home/page/LiveView.h"
#include "home/page/Page.h"
#include "home/page/PageAccess.h"
#include "home/page/Switchboard.h"
#include "home/server/WebServer.h"

namespace quillpad::home {

class HomeScreen {
 public:
  // Takes up the state of the last run and listens at the port; on failure one line that says why.
  static std::expected<std::unique_ptr<HomeScreen>, std::string> start(
      const std::filesystem::path& extension,
      std::uint16_t port,
      const Account& account,
      const SampleFolder& samples = SampleFolder({}),
      std::unique_ptr<Switchboard> switchboard = nullptr);

  // Of the page, with the key that it needs.
  std::string address(HomeView view = HomeView::desk) const;

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
  HomeScreen(
      const std::filesystem::path& extension,
      const Account& account,
      const SampleFolder& samples,
      std::unique_ptr<Switchboard> switchboard);
  Supervisor& supervisor() { return widgets_.supervisor(); }
  const Supervisor& supervisor() const { return widgets_.supervisor(); }
  WebReply answer(const WebRequest& request);
  WebReply answerToOwner(const WebRequest& request);
  WebReply page(const WebRequest& request);
  WebReply changes(const WebRequest& request);
  WebReply events(const WebRequest& request);
  WebReply gallery(const WebRequest& request);
  WebReply picture(const WebRequest& request);
  WebReply archive(const WebRequest& request);
  WebReply switchboardForm(const WebRequest& request);
  WebReply change(const WebRequest& request);
  bool changeWidgets(const Moment& now, const WebRequest& request);
  WebAnswer processAnswer(const PageFrame& frame) const;
  PageFrame newFrame(const WebRequest& request) const;
  std::uint64_t seenVersion(const WebRequest& request) const;
  void takeUpProgram(const Moment& now);
  void report(const std::string& line);

  PageAccess access_;
  std::string token_;
  std::string instance_;
  std::string locale_;

  LineRelay relay_;
  ProgramWatch program_;
  ExtensionDriver widgets_;
  PreviewSession previews_;
  CardRenderer cards_;
  LiveView live_;
  EngineerView engineer_;
  CanvasView canvas_;
  std::unique_ptr<Switchboard> switchboard_;  // none where none was named
  std::unique_ptr<WebServer> server_;

  std::uint64_t shownVersion_ = 0;
};

}  // namespace quillpad::home
