// The size families of the phone's widgets, and how large a widget of each is on which screen.
#pragma once

#include <span>
#include <string_view>

#include "platform/channel/Messages.h"
#include "platform/text/Geometry.h"
#include "platform/ui/Environment.h"

namespace quillpad::home {

// The screens by name, in points upright, for example "393x852". The first is the default.
std::span<const std::string_view> screens();

// The size of the family's widgets on the screen, in points; of an unknown screen, the default's.
drawing::Size widgetSize(ui::WidgetFamily family, std::string_view screen = {});

// The family that the widget is shown in.
ui::WidgetFamily familyOf(const channel::CatalogueItem& widget);

}  // namespace quillpad::home
