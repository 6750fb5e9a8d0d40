// Draws a gallery and compares each picture with the recorded one of its name.
#pragma once

#include <algorithm>
#include <array>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "home/cards/CardBatch.h"
#include "home/commands/GalleryFolder.h"
#include "home/commands/GalleryPlan.h"
#include "home/page/GalleryPage.h"

namespace quillpad::home {

// The name of the file that holds a card's picture.
std::string pictureFile(const std::string& stem, ui::Appearance appearance);

// What became of the pictures of a run. Filled from several threads.
class GalleryTally {
 public:
  void add(GalleryFolder::Status status) {
    const std::scoped_lock lock(mutex_);
    ++counts_.at(static_cast<std::size_t>(status));
  }

  void add(PictureChange change) {
    const std::scoped_lock lock(mutex_);
    changes_.push_back(std::move(change));
  }

  void fail(Failure failure) {
    const std::scoped_lock lock(mutex_);
    failure_ = failure_ ? failure_ : std::optional(std::move(failure));
  }

  std::size_t count(GalleryFolder::Status status) const {
    return counts_.at(static_cast<std::size_t>(status));
  }
  // The first failure, if there was one.
  Done outcome() const { return failure_ ? Done(std::unexpected(*failure_)) : Done(); }

  // In the order of their names.
  std::vector<PictureChange> takeChanges() {
    std::ranges::sort(changes_, {}, &PictureChange::fileName);
    return std::move(changes_);
  }

 private:
  std::mutex mutex_;
  std::array<std::size_t, 3> counts_{};
  std::vector<PictureChange> changes_;
  std::optional<Failure> failure_;
};

using TakeComparison = std::function<void(
    const GalleryPlan::Card& card,
    const std::string& name,
    const BatchPicture& picture,
    GalleryFolder::Comparison comparison)>;

// Draws the plan's cards in both appearances on all cores; each picture is counted in the tally and
// handed on, from several threads. Adds the pictures to the plan's widgets.
Done drawGallery(
    GalleryPlan& plan,
    const GalleryFolder& folder,
    const drawing::Tolerance& tolerance,
    GalleryTally& tally,
    const TakeComparison& take);

}  // namespace quillpad::home
