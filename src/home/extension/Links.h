// Which of a widget's links may be opened. Pure; callable from any thread.
#pragma once

#include <string_view>

#include "platform/channel/Messages.h"

namespace quillpad::home {

// Whether the link leads to an application: its scheme is one that the widget's bundle declares,
// and none that a browser or a file manager would take for itself.
bool leadsToApplication(const channel::CatalogueItem& widget, std::string_view link);

}  // namespace quillpad::home
