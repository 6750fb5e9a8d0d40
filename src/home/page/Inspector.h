// The part of the engineer's view that says why a card looks as it does: the view tree and the
// display list with what the layout made of them. Pure.
#pragma once

#include <string>

#include "home/language/Language.h"
#include "home/page/Markup.h"
#include "platform/paint/Card.h"

namespace quillpad::home {

// What is probably not meant, a line for each; empty where there is nothing.
Markup warningsMarkup(const drawing::Inspection& inspection, const Language& language);

// The view tree, the display list, which is given as JSON too, and the facts for the script.
Markup inspectorMarkup(
    const drawing::Inspection& inspection,
    const std::string& displayList,
    const Language& language);

}  // namespace quillpad::home
