// What the home screen says of the place that a view is made for. Plain values.
#pragma once

#include <array>
#include <optional>
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

constexpr std::optional<WidgetFamily> familyFromName(std::string_view name) {
  const auto* family = valueNamed(widgetFamilyNames, name);
  return family == nullptr ? std::nullopt : std::optional(*family);
}

struct Environment {
  WidgetFamily widgetFamily = WidgetFamily::systemSmall;
};

}  // namespace quillpad::ui
