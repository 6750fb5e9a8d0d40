// What the home screen says of the place that a view is made for. Plain values.
#pragma once

namespace quillpad::ui {

enum class WidgetFamily { systemSmall, systemMedium };

struct Environment {
  WidgetFamily widgetFamily = WidgetFamily::systemSmall;
};

}  // namespace quillpad::ui
