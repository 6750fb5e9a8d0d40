#include "home/cards/CardBatch.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <thread>
#include <tuple>

#include "home/cards/CardRenderer.h"
#include "platform/foundation/Json.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad::home {
namespace {

// Views are compared by what they are written as, each once.
class ViewNames {
 public:
  std::size_t of(const ui::View* view) {
    const auto [known, isNew] = byView_.try_emplace(view);
    if (isNew) {
      const std::string text = writeJson(ui::toValue(*view), JsonLayout::compact).value_or("");
      known->second = byText_.try_emplace(text, byText_.size()).first->second;
    }
    return known->second;
  }

 private:
  std::map<const ui::View*, std::size_t> byView_;
  std::map<std::string, std::size_t> byText_;
};

// The cards that are alike, by their places.
using Alike = std::vector<std::size_t>;

// In an order that lets those with the same texts follow each other.
std::vector<Alike> groupsOf(std::span<const BatchCard> cards) {
  ViewNames names;
  std::map<std::tuple<std::string, std::size_t, double, double, int, bool>, Alike> groups;
  for (std::size_t place = 0; place < cards.size(); ++place) {
    const auto& [view, request, locale] = cards[place];
    groups[{locale,
            names.of(view),
            request.size.width,
            request.size.height,
            request.scale,
            request.redacted}]
        .push_back(place);
  }
  std::vector<Alike> result;
  result.reserve(groups.size());
  for (auto& [key, alike] : groups) {
    result.push_back(std::move(alike));
  }
  return result;
}

}  // namespace

void drawAll(
    std::span<const BatchCard> cards,
    std::span<const ui::Appearance> appearances,
    std::size_t threads,
    const std::function<void(const BatchPicture&)>& take) {
  const std::vector<Alike> groups = groupsOf(cards);
  std::atomic<std::size_t> next = 0;
  const auto work = [&] {
    CardRenderer renderer;
    for (std::size_t i = next++; i < groups.size(); i = next++) {
      const BatchCard& first = cards[groups[i].front()];
      const drawing::DisplayList list = renderer.compose(*first.view, first.request, first.locale);
      const std::string label = drawing::accessibilityLabel(list);
      for (const ui::Appearance appearance : appearances) {
        const auto png = renderer.write(list, PictureFormat::png, appearance);
        for (const std::size_t card : groups[i]) {
          take({.card = card, .appearance = appearance, .png = png, .accessibilityLabel = label});
        }
      }
    }
  };
  std::vector<std::jthread> helpers;
  for (std::size_t count = 1; count < std::min(threads, groups.size()); ++count) {
    helpers.emplace_back(work);
  }
  work();
}

std::size_t drawingThreads() {
  return std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, 8);
}

}  // namespace quillpad::home
