#include "platform/widgets/StaticConfiguration.h"

namespace quillpad::widgets {

WidgetConfiguration WidgetConfiguration::configurationDisplayName(std::string key) && {
  displayNameKey = std::move(key);
  return std::move(*this);
}

WidgetConfiguration WidgetConfiguration::description(std::string key) && {
  descriptionKey = std::move(key);
  return std::move(*this);
}

WidgetConfiguration WidgetConfiguration::supportedFamilies(
    std::vector<ui::WidgetFamily> supported) && {
  families = std::move(supported);
  return std::move(*this);
}

}  // namespace quillpad::widgets
