// What the extension answers, as text for a person at a terminal. Pure functions; times are local.
#pragma once

#include <string>

#include "platform/channel/Messages.h"

namespace quillpad::home {

std::string describe(const channel::Catalogue& catalogue);
std::string describe(const channel::Entry& entry);
std::string describe(const channel::Timeline& timeline);

}  // namespace quillpad::home
