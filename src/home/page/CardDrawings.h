// The page's pictures of the widgets: each is drawn when it is first asked for and kept until what
// it shows changes. No two have an id in common, so that all can be part of one page. Belongs to
// one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "home/cards/CardRenderer.h"
#include "home/extension/WidgetState.h"
#include "home/page/Page.h"
#include "platform/channel/Messages.h"

namespace quillpad::home {

class CardDrawings {
 public:
  // What a widget shows now, and the figures that are kept beside it; nothing where there are none,
  // or where they cannot be drawn.
  struct Drawn {
    std::optional<DrawnCard> card;
    std::optional<DrawnCard> kept;
  };

  // For the locale. What cannot be drawn is reported in one line.
  CardDrawings(
      CardRenderer& cards, std::string locale, std::function<void(const std::string& line)> report);

  // Good until it is called for the same widget again.
  const Drawn& of(const WidgetState& widget);

  // Of the widget's snapshot, of those that have this version; nullptr where it cannot be drawn.
  // Good until it is called for another version.
  const DrawnCard* ofSnapshot(
      const channel::CatalogueItem& about, const RenderedEntry& snapshot, std::uint64_t version);

  // Drops the pictures of the widgets that are shown no more.
  void keepOnly(const std::function<bool(std::string_view kind)>& isShown);

 private:
  struct Kept {
    std::uint64_t version = 0;  // of the card
    Drawn drawn;
  };

  std::optional<DrawnCard> draw(const channel::CatalogueItem& about, const RenderedEntry& picture);

  CardRenderer& cards_;
  std::string locale_;
  std::function<void(const std::string&)> report_;
  std::size_t lastNumber_ = 0;  // of a picture, for its ids
  std::map<std::string, Kept, std::less<>> widgets_;
  std::uint64_t snapshotsVersion_ = 0;
  std::map<std::string, std::optional<DrawnCard>, std::less<>> snapshots_;
};

}  // namespace quillpad::home
