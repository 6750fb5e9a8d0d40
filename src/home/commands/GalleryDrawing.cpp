#include "home/commands/GalleryDrawing.h"

#include "home/cards/PictureName.h"
#include "home/commands/Progress.h"

namespace quillpad::home {

std::string pictureFile(const std::string& stem, ui::Appearance appearance) {
  return stem + "-" + std::string(ui::appearanceName(appearance)) + ".png";
}

Done drawGallery(
    GalleryPlan& plan,
    const GalleryFolder& folder,
    const drawing::Tolerance& tolerance,
    GalleryTally& tally,
    const TakeComparison& take) {
  std::vector<BatchCard> cards;
  cards.reserve(plan.cards.size());
  for (const GalleryPlan::Card& card : plan.cards) {
    cards.push_back(card.drawing);
  }
  std::vector<std::string> labels(cards.size());
  Progress progress(cards.size() * bothAppearances.size());
  drawAll(cards, bothAppearances, drawingThreads(), [&](const BatchPicture& picture) {
    progress.advance();
    if (!picture.png) {
      return tally.fail({ExitStatus::wrongUsage, picture.png.error()});
    }
    const GalleryPlan::Card& card = plan.cards[picture.card];
    const std::string name = pictureFile(card.stem, picture.appearance);
    auto comparison = folder.compare(name, *picture.png, tolerance);
    if (!comparison) {
      return tally.fail(std::move(comparison.error()));
    }
    tally.add(comparison->status);
    if (picture.appearance == ui::Appearance::light) {
      labels[picture.card] = picture.accessibilityLabel;
    }
    take(card, name, picture, *std::move(comparison));
  });
  for (std::size_t i = 0; i < cards.size(); ++i) {
    const GalleryPlan::Card& card = plan.cards[i];
    plan.widgets[card.widget].pictures.push_back(
        {.stem = card.stem,
         .title = card.title,
         .size = card.drawing.request.size,
         .accessibilityLabel = std::move(labels[i])});
  }
  return tally.outcome();
}

}  // namespace quillpad::home
