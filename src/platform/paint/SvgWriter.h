// Writes display lists as SVG documents. Texts are the outlines that the PNG writer fills, so both
// look alike wherever they are shown; the texts themselves are in the title, for readers.
#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include "platform/paint/DisplayList.h"
#include "platform/paint/Pictures.h"
#include "platform/text/FontBook.h"

namespace quillpad::drawing {

// The document, without an XML declaration, so that it can be part of a page; or one line that says
// why it cannot be drawn. Without an appearance its colours are CSS light-dark() pairs, which
// follow the color scheme of the page around it. Every id in it begins with the prefix (letters,
// digits, hyphens, a letter first): documents of different prefixes may share a page.
std::expected<std::string, std::string> writeSvg(
    const DisplayList& list,
    std::optional<ui::Appearance> appearance,
    FontBook& fonts,
    Pictures& pictures,
    std::string_view idPrefix);

}  // namespace quillpad::drawing
