// What a gallery shows: which entries of which widgets, in which sizes and languages; and the views
// of all of them, asked for over one extension. A gallery can be made again from its settings.
#pragma once

#include <cstddef>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "home/cards/CardBatch.h"
#include "home/commands/ExtensionBatch.h"
#include "home/commands/Failure.h"
#include "home/extension/EntrySource.h"
#include "home/page/GalleryPage.h"
#include "platform/foundation/Value.h"
#include "platform/ui/View.h"

namespace quillpad::home {

// Where the entries of a gallery come from; the given ones are samples.
inline constexpr auto gallerySources = sourcesWithGiven("samples");

struct GallerySettings {
  std::optional<EntrySource> entries{};  // absent: the timeline; of a whole matrix, all three
  bool all = false;                      // every screen and language
  int scale = 2;
  std::string locale{};    // empty: that of this process; "en_US" for samples
  std::string currency{};  // empty: that of the settings; "$" for samples
  std::string samples{};   // the folder; empty: the one that comes with the programs

  Value toValue() const;
  // Samples are looked for where this process has them, wherever the gallery was made.
  static std::expected<GallerySettings, std::string> fromValue(const Value& value);
};

struct GalleryPlan {
  struct Card {
    std::size_t widget = 0;  // its place among the widgets
    std::string stem;        // of its files' names
    std::string title;       // for a person
    std::string entry{};     // a source's or a sample's name
    std::string screen{};
    std::string language{};  // empty: that of this process
    BatchCard drawing;
  };

  std::vector<GalleryWidget> widgets;  // without their pictures
  std::vector<ui::View> views;         // of the cards
  std::vector<Card> cards;
  std::vector<std::string> missing;  // the stems of the cards that cannot be drawn
  std::optional<Failure> failure;    // why, of the first of them

  // The failure with how many cards are missing, if any is.
  Done outcome() const;
};

// The plan; a failure where there is nothing to draw at all.
std::expected<GalleryPlan, Failure> planGallery(
    ExtensionBatch& extension, const GallerySettings& settings);

}  // namespace quillpad::home
