// Draws many cards to PNG on all cores: each core has fonts and canvases of its own, and cards that
// are alike are drawn once. The bytes are those that one card after the other would have.
#pragma once

#include <cstddef>
#include <expected>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "platform/paint/Card.h"
#include "platform/ui/Color.h"
#include "platform/ui/View.h"

namespace quillpad::home {

struct BatchCard {
  const ui::View* view = nullptr;  // outlives the batch
  drawing::CardRequest request;
  std::string locale;
};

struct BatchPicture {
  std::size_t card = 0;  // its place among the cards
  ui::Appearance appearance = ui::Appearance::light;
  // The PNG file, or why there is none; the same for all cards that are alike.
  const std::expected<std::string, std::string>& png;
  const std::string& accessibilityLabel;
};

// Draws each card in each of the appearances on as many threads. `take` is called for every picture
// once, from any of the threads and several at a time, in no order.
void drawAll(
    std::span<const BatchCard> cards,
    std::span<const ui::Appearance> appearances,
    std::size_t threads,
    const std::function<void(const BatchPicture&)>& take);

// As many threads as are of use here.
std::size_t drawingThreads();

}  // namespace quillpad::home
