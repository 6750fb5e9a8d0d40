#include "home/commands/GalleryArchive.h"

#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "home/cards/PictureName.h"
#include "home/commands/Progress.h"
#include "platform/foundation/ZipWriter.h"
#include "platform/os/WholeFile.h"

namespace quillpad::home {
namespace {

std::string nameOf(const GalleryPlan::Card& card, ui::Appearance appearance) {
  const drawing::CardRequest& request = card.drawing.request;
  return PictureName{
      .kind = request.kind,
      .entry = card.entry,
      .screen = card.screen,
      .language = card.language,
      .appearance = appearance,
      .scale = request.scale}
      .png();
}

}  // namespace

Done writeGalleryArchive(const GalleryPlan& plan, const std::filesystem::path& file) {
  std::vector<BatchCard> cards;
  cards.reserve(plan.cards.size());
  for (const GalleryPlan::Card& card : plan.cards) {
    cards.push_back(card.drawing);
  }
  Progress progress(cards.size() * bothAppearances.size());
  std::mutex mutex;
  std::optional<Failure> problem;
  const auto drawInto = [&](const TakePiece& take) {
    ZipWriter zip;
    std::error_code error;
    drawAll(cards, bothAppearances, drawingThreads(), [&](const BatchPicture& picture) {
      progress.advance();
      const std::scoped_lock lock(mutex);
      if (error) {
        return;
      }
      if (!picture.png) {
        problem = Failure{ExitStatus::wrongUsage, picture.png.error()};
        error = std::make_error_code(std::errc::operation_canceled);
        return;
      }
      const auto head = zip.add(nameOf(plan.cards[picture.card], picture.appearance), *picture.png);
      error = head ? take(*head) : std::make_error_code(std::errc::file_too_large);
      error = error ? error : take(*picture.png);
    });
    return error ? error : take(zip.end());
  };
  const std::error_code error = writeWholeFile(file, drawInto, {.access = FileAccess::asBefore});
  if (problem) {
    return std::unexpected(*std::move(problem));
  }
  if (error) {
    return failure(
        ExitStatus::notPossible, "cannot write " + file.string() + ": " + error.message());
  }
  return {};
}

}  // namespace quillpad::home
