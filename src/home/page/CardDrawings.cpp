#include "home/page/CardDrawings.h"

#include <utility>

#include "home/cards/WidgetSizes.h"
#include "home/extension/PrintedLine.h"

namespace quillpad::home {

CardDrawings::CardDrawings(
    CardRenderer& cards, std::string locale, std::function<void(const std::string& line)> report)
    : cards_(cards), locale_(std::move(locale)), report_(std::move(report)) {}

const CardDrawings::Drawn& CardDrawings::of(const WidgetState& widget) {
  auto& [version, drawn] = widgets_[widget.about->kind];
  if (version != widget.version) {
    version = widget.version;
    const auto drawnFrom = [&](const RenderedEntry* picture) {
      return picture == nullptr ? std::nullopt : draw(*widget.about, *picture);
    };
    drawn = {.card = drawnFrom(widget.picture), .kept = drawnFrom(widget.kept)};
  }
  return drawn;
}

const DrawnCard* CardDrawings::ofSnapshot(
    const channel::CatalogueItem& about, const RenderedEntry& snapshot, std::uint64_t version) {
  if (std::exchange(snapshotsVersion_, version) != version) {
    snapshots_.clear();
  }
  auto kept = snapshots_.find(about.kind);
  if (kept == snapshots_.end()) {
    kept = snapshots_.emplace(about.kind, draw(about, snapshot)).first;
  }
  const std::optional<DrawnCard>& drawn = kept->second;
  return drawn ? &*drawn : nullptr;
}

void CardDrawings::keepOnly(const std::function<bool(std::string_view kind)>& isShown) {
  std::erase_if(widgets_, [&](const auto& each) { return !isShown(each.first); });
}

std::optional<DrawnCard> CardDrawings::draw(
    const channel::CatalogueItem& about, const RenderedEntry& picture) {
  const ui::WidgetFamily family = familyOf(about);
  const drawing::DisplayList list = cards_.compose(
      picture.view,
      {.kind = about.kind,
       .family = std::string(ui::familyName(family)),
       .size = widgetSize(family),
       .redacted = picture.source == EntrySource::placeholder},
      locale_);
  auto document = cards_.writeForPage(list, "p" + std::to_string(++lastNumber_) + "-");
  if (!document) {
    report_("the picture of " + printableText(about.kind) + " is not shown: " + document.error());
    return std::nullopt;
  }
  return DrawnCard{.picture = trusted(std::move(*document)), .link = list.link};
}

}  // namespace quillpad::home
