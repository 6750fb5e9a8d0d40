// What shows the placed widgets live: the page, the changes since it was made, and the gallery to
// choose them from. What is not drawn yet is waited for; the changes tell of what is. Belongs to
// one thread.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "home/cards/CardRenderer.h"
#include "home/extension/Supervisor.h"
#include "home/page/CardDrawings.h"
#include "home/page/Page.h"
#include "home/server/WebMessages.h"

namespace quillpad::home {

class LiveView {
 public:
  // For the locale. The supervisor and the renderer must outlive the view; what cannot be shown is
  // said in one line.
  LiveView(
      const Supervisor& supervisor,
      CardRenderer& cards,
      std::string locale,
      std::string signInHint,
      std::function<void(const std::string& line)> report)
      : supervisor_(supervisor),
        signInHint_(std::move(signInHint)),
        report_(report),
        drawings_(cards, std::move(locale), std::move(report)) {}

  // To be called in each turn of the loop. Returns whether there is more to show than in the last
  // one, as pictures were left over in it.
  bool beginTurn() { return drawings_.beginTurn(); }

  // Whether pictures are left over for the next turn.
  bool isBehind() const { return drawings_.isBehind(); }

  // Drops the pictures of the widgets that are shown no more.
  void forgetRemoved();

  // Waits for the pictures for a few seconds.
  LaterAnswer page(HomeView view, const PageFrame& frame);

  // Waits for the snapshots that are still missing, as long as they may still come.
  LaterAnswer gallery(const PageFrame& frame);

  // What has changed since the version, as far as it is drawn.
  WebAnswer changes(std::uint64_t since, const PageFrame& frame);
  EventStream events(std::uint64_t since, const PageFrame& frame);

  // What there is to tell of the whole home screen; empty while all is well.
  std::string notice(const Language& language) const;

 private:
  std::uint64_t drawnVersion();
  // Nothing where they cannot be written, which is reported.
  std::optional<std::string> changesBetween(
      std::uint64_t since, std::uint64_t version, const PageFrame& frame);
  CardModel modelOf(const WidgetState& widget, const Language& language) const;
  std::string emptyText(const Language& language) const;

  const Supervisor& supervisor_;
  std::string signInHint_;
  std::function<void(const std::string&)> report_;
  CardDrawings drawings_;
  // The events that lead to a version, by the version that a tab has seen before and its language.
  std::uint64_t eventsVersion_ = 0;
  std::map<std::pair<std::uint64_t, std::string>, std::shared_ptr<const std::string>> events_;
};

}  // namespace quillpad::home
