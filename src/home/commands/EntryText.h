// What the extension answers, as text for a person at a terminal. Pure functions; times are local.
#pragma once

#include <string>

#include "platform/channel/Messages.h"
#include "platform/foundation/Value.h"

namespace quillpad::home {

// "2026-03-07 09:05:03", in local time.
std::string localTime(Date date);

std::string describe(const channel::Catalogue& catalogue);
std::string describe(const channel::Entry& entry);
std::string describe(const channel::Timeline& timeline);

}  // namespace quillpad::home
