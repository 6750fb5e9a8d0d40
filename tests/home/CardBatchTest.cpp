// Many cards on several threads: the same bytes as one after the other.
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "home/cards/CardBatch.h"
#include "home/cards/CardRenderer.h"

namespace quillpad::home {
namespace {

using Key = std::pair<std::size_t, ui::Appearance>;

std::map<Key, std::string> drawn(const std::vector<BatchCard>& cards, std::size_t threads) {
  std::mutex mutex;
  std::map<Key, std::string> pictures;
  const ui::Appearance appearances[] = {ui::Appearance::light, ui::Appearance::dark};
  drawAll(cards, appearances, threads, [&](const BatchPicture& picture) {
    const std::scoped_lock lock(mutex);
    EXPECT_TRUE(pictures.emplace(Key{picture.card, picture.appearance}, *picture.png).second);
  });
  return pictures;
}

TEST(CardBatch, DrawsTheSameBytesOnAnyNumberOfThreads) {
  std::vector<ui::View> views;
  for (const char* text : {"Sales", "مبيعات", "売上", "👍🏽 €1,234.5", "Sales"}) {
    views.emplace_back(ui::Text::verbatim(text));
  }
  std::vector<BatchCard> cards;
  for (int i = 0; i < 60; ++i) {
    const double width = 141 + i % 7;
    cards.push_back(
        {.view = &views[static_cast<std::size_t>(i) % views.size()],
         .request = {.kind = std::to_string(i), .size = {width, 150}},
         .locale = i % 2 == 0 ? "en" : "ar"});
  }
  CardRenderer renderer;
  std::map<Key, std::string> expected;
  for (std::size_t i = 0; i < cards.size(); ++i) {
    const auto list = renderer.compose(*cards[i].view, cards[i].request, cards[i].locale);
    for (const auto appearance : {ui::Appearance::light, ui::Appearance::dark}) {
      expected[{i, appearance}] = renderer.write(list, PictureFormat::png, appearance).value();
    }
  }
  for (const std::size_t threads : {1U, 4U}) {
    EXPECT_TRUE(drawn(cards, threads) == expected) << threads;
  }
  cards.front().request.size = {0, 0};
  drawAll(cards, {{ui::Appearance::light}}, 2, [](const BatchPicture& picture) {
    EXPECT_EQ(picture.png.has_value(), picture.card != 0);
  });
}

}  // namespace
}  // namespace quillpad::home
