#include "home/page/CardDrawings.h"

#include <algorithm>
#include <utility>

#include "home/cards/WidgetSizes.h"
#include "home/extension/PrintedLine.h"
#include "platform/foundation/NumberText.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

// How long is drawn in a turn of the loop.
constexpr auto maxDrawing = 50ms;

// All pictures of a page together; a thousand cards of invoices take the half.
constexpr std::size_t maxPictures = std::size_t{24} * 1024 * 1024;

std::size_t sizeOf(const CardDrawings::Drawing& drawing) {
  return drawing.card ? drawing.card->picture.html().size() : 0;
}

}  // namespace

CardDrawings::CardDrawings(
    CardRenderer& cards, std::string locale, std::function<void(const std::string& line)> report)
    : cards_(cards), locale_(std::move(locale)), report_(std::move(report)) {}

bool CardDrawings::beginTurn() {
  spent_ = {};
  return std::exchange(isBehind_, false);
}

bool CardDrawings::mayDraw() {
  isBehind_ = isBehind_ || spent_ >= maxDrawing;
  return !isBehind_;
}

std::uint64_t CardDrawings::drawChanges(std::vector<WidgetState> widgets, std::uint64_t version) {
  if (isBehind_ || drawnVersion_ == version) {
    return drawnVersion_;
  }
  std::ranges::sort(widgets, {}, &WidgetState::version);
  for (const WidgetState& widget : widgets) {
    if (of(widget) != nullptr) {
      continue;
    }
    if (!mayDraw()) {
      return drawnVersion_ = widget.version - 1;
    }
    auto& [drawnVersion, drawn] = widgets_[widget.about->kind];
    drawnVersion = widget.version;
    draw(drawn.shown, widgetBytes_, *widget.about, widget.picture);
    draw(drawn.kept, widgetBytes_, *widget.about, widget.kept);
  }
  return drawnVersion_ = version;
}

const CardDrawings::Drawn* CardDrawings::of(const WidgetState& widget) const {
  const auto known = widgets_.find(widget.about->kind);
  return known == widgets_.end() || known->second.version != widget.version ? nullptr
                                                                            : &known->second.drawn;
}

const CardDrawings::Drawing* CardDrawings::ofSnapshot(
    const channel::CatalogueItem& about, const RenderedEntry& snapshot, std::uint64_t version) {
  if (std::exchange(snapshotsVersion_, version) != version) {
    snapshots_.clear();
    snapshotBytes_ = 0;
  }
  auto known = snapshots_.find(about.kind);
  if (known == snapshots_.end()) {
    if (!mayDraw()) {
      return nullptr;
    }
    known = snapshots_.try_emplace(about.kind).first;
    draw(known->second, snapshotBytes_, about, &snapshot);
  }
  return &known->second;
}

void CardDrawings::keepOnly(const std::function<bool(std::string_view kind)>& isShown) {
  std::erase_if(widgets_, [&](const auto& each) {
    const auto& [kind, versioned] = each;
    if (isShown(kind)) {
      return false;
    }
    widgetBytes_ -= sizeOf(versioned.drawn.shown) + sizeOf(versioned.drawn.kept);
    return true;
  });
}

// Where the picture is another one; a widget also changes by how far it is live.
void CardDrawings::draw(
    Drawing& drawing,
    std::size_t& bytes,
    const channel::CatalogueItem& about,
    const RenderedEntry* picture) {
  if (drawing.view == (picture == nullptr ? nullptr : picture->view)) {
    return;
  }
  bytes -= sizeOf(drawing);
  drawing = {};
  if (picture == nullptr) {
    return;
  }
  const auto begin = std::chrono::steady_clock::now();
  drawing.view = picture->view;
  if (auto card = drawn(about, *picture, maxPictures - bytes)) {
    drawing.card = *std::move(card);
    bytes += sizeOf(drawing);
  } else {
    drawing.problem = card.error();
    report_("the picture of " + printableText(about.kind) + " is not shown: " + card.error());
  }
  spent_ += std::chrono::steady_clock::now() - begin;
}

std::expected<DrawnCard, std::string> CardDrawings::drawn(
    const channel::CatalogueItem& about, const RenderedEntry& picture, std::size_t room) {
  const ui::WidgetFamily family = familyOf(about);
  const drawing::DisplayList list = cards_.compose(
      *picture.view,
      {.kind = about.kind,
       .family = std::string(ui::familyName(family)),
       .size = widgetSize(family),
       .redacted = picture.source == EntrySource::placeholder},
      locale_);
  auto document = cards_.writeForPage(list, "p" + std::to_string(++lastNumber_) + "-");
  if (!document) {
    return std::unexpected(document.error());
  }
  if (document->size() > room) {
    return std::unexpected(
        "the pictures of a page take " + bytesText(maxPictures) + " at most, and this one " +
        bytesText(document->size()));
  }
  return DrawnCard{.picture = trusted(std::move(*document)), .link = list.link};
}

}  // namespace quillpad::home
