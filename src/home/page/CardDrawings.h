// The page's pictures of the widgets: each is drawn when it is first asked for and kept until what
// it shows changes. No two have an id in common, so that all can be part of one page. An extension
// may have very many and very heavy cards, so the loop that draws them gives everybody else a turn
// after a while, and the page holds no more of them than a browser can show. Belongs to one thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "home/cards/CardRenderer.h"
#include "home/extension/WidgetState.h"
#include "home/page/Page.h"
#include "platform/channel/Messages.h"

namespace quillpad::home {

class CardDrawings {
 public:
  // A picture, or why it cannot be drawn; neither where there is none.
  struct Drawing {
    SharedView view{};  // that it was drawn from
    std::optional<DrawnCard> card{};
    std::string problem{};
  };

  // What a widget shows now, and the figures that are kept beside it.
  struct Drawn {
    Drawing shown;
    Drawing kept;
  };

  // For the locale. What cannot be drawn is reported in one line.
  CardDrawings(
      CardRenderer& cards, std::string locale, std::function<void(const std::string& line)> report);

  // To be called in each turn of the loop: cards are drawn in it for a while. Returns whether some
  // were left over in the turn before.
  bool beginTurn();

  // Whether some are left over for the next turn.
  bool isBehind() const { return isBehind_; }

  // Draws what has changed, the oldest change first, as far as this turn allows. Returns the
  // version up to which all is drawn: the one given where nothing is left over.
  std::uint64_t drawChanges(std::vector<WidgetState> widgets, std::uint64_t version);

  // What was drawn of the widget; nullptr where that is still to come.
  const Drawn* of(const WidgetState& widget) const;

  // Of the widget's snapshot, of those that have this version, to be drawn if this turn allows;
  // nullptr where that is still to come. Good until it is called for another version.
  const Drawing* ofSnapshot(
      const channel::CatalogueItem& about, const RenderedEntry& snapshot, std::uint64_t version);

  // Drops the pictures of the widgets that are shown no more.
  void keepOnly(const std::function<bool(std::string_view kind)>& isShown);

 private:
  struct Versioned {
    std::uint64_t version = 0;  // of the widget
    Drawn drawn;
  };

  bool mayDraw();
  void draw(
      Drawing& drawing,
      std::size_t& bytes,
      const channel::CatalogueItem& about,
      const RenderedEntry* picture);
  std::expected<DrawnCard, std::string> drawn(
      const channel::CatalogueItem& about, const RenderedEntry& picture, std::size_t room);

  CardRenderer& cards_;
  std::string locale_;
  std::function<void(const std::string&)> report_;
  std::size_t lastNumber_ = 0;                   // of a picture, for its ids
  std::chrono::steady_clock::duration spent_{};  // in this turn
  bool isBehind_ = false;
  std::uint64_t drawnVersion_ = 0;  // up to which the widgets are drawn
  std::map<std::string, Versioned, std::less<>> widgets_;
  std::size_t widgetBytes_ = 0;  // of all their pictures
  std::uint64_t snapshotsVersion_ = 0;
  std::map<std::string, Drawing, std::less<>> snapshots_;
  std::size_t snapshotBytes_ = 0;
};

}  // namespace quillpad::home
