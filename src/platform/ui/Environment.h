// What the home screen says of the place that a view is made for. Plain values.
#pragma once

#include <array>
#include <string_view>

#include "platform/foundation/Named.h"

namespace quillpad::ui {

// The sizes and places of widgets that a phone has.
enum class WidgetFamily {
  systemSmall,
  systemMedium,
  systemLarge,
  systemExtraLarge,
  accessoryCircular,
  accessoryRectangular,
  accessoryInline,
};

inline constexpr std::array widgetFamilyNames{
    Named{"systemSmall", WidgetFamily::systemSmall},
    Named{"systemMedium", WidgetFamily::systemMedium},
    Named{"systemLarge", WidgetFamily::systemLarge},
    Named{"systemExtraLarge", WidgetFamily::systemExtraLarge},
    Named{"accessoryCircular", WidgetFamily::accessoryCircular},
    Named{"accessoryRectangular", WidgetFamily::accessoryRectangular},
    Named{"accessoryInline", WidgetFamily::accessoryInline}};

constexpr std::string_view familyName(WidgetFamily family) {
  return nameOf(widgetFamilyNames, family);
}

struct Environment {
  WidgetFamily widgetFamily = WidgetFamily::systemSmall;
};

}  // namespace quillpad::ui
