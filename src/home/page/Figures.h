// Figures in a page. They are there in plain digits; the page's script words them as people of its
// language do. Pure.
#pragma once

#include <cstddef>

#include "home/page/Markup.h"
#include "platform/foundation/Value.h"

namespace quillpad::home {

Markup numberMarkup(std::size_t number);
Markup bytesMarkup(std::size_t bytes);
Markup mebibytesMarkup(std::size_t bytes);
Markup millisecondsMarkup(std::size_t milliseconds);

// The time of a day, to the second.
Markup secondMarkup(Date date);

}  // namespace quillpad::home
