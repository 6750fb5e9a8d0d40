// Draws widgets: a card is composed once and written in any format and appearance. Keeps the fonts,
// shaped texts and pictures that drawing needs from card to card.
// Belongs to one thread.
#pragma once

#include <array>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/Named.h"
#include "platform/paint/Card.h"
#include "platform/paint/DisplayList.h"
#include "platform/paint/Pictures.h"
#include "platform/paint/PngWriter.h"
#include "platform/text/FontBook.h"
#include "platform/text/TextEngine.h"
#include "platform/ui/Color.h"
#include "platform/ui/Environment.h"
#include "platform/ui/View.h"

namespace quillpad::home {

enum class PictureFormat { png, svg, json };

inline constexpr std::array pictureFormatNames{
    Named{"png", PictureFormat::png},
    Named{"svg", PictureFormat::svg},
    Named{"json", PictureFormat::json}};

// Whether the language that the locale gets its texts in is written from right to left: true for
// "ar_EG", false for "he_IL" as long as there is no Hebrew translation.
bool isMirrored(const std::string& locale);

class CardRenderer {
 public:
  CardRenderer();

  // The card's display list. The language is that of the locale, for example "zh_Hans_CN", and
  // with it the direction.
  drawing::DisplayList compose(
      const ui::View& view, drawing::CardRequest request, const std::string& locale);

  // The same with how its layout came about.
  drawing::Inspection inspect(
      const ui::View& view, drawing::CardRequest request, const std::string& locale);

  // The list as a file of the format, or one line that says why it cannot be drawn. The ids of an
  // SVG document begin with the prefix, so that several can be part of a page.
  std::expected<std::string, std::string> write(
      const drawing::DisplayList& list,
      PictureFormat format,
      ui::Appearance appearance,
      std::string_view idPrefix = "card");

  // Reads the pictures again when they are next needed.
  void forgetPictures() { pictures_.forget(); }

  // The list as an SVG document that follows the appearance of the page around it.
  std::expected<std::string, std::string> writeForPage(
      const drawing::DisplayList& list, std::string_view idPrefix);

 private:
  drawing::ImageSize imageSize();

  drawing::FontBook fonts_;
  drawing::TextEngine texts_;
  drawing::Pictures pictures_;
  drawing::PngWriter png_;
};

}  // namespace quillpad::home
