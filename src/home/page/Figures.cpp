#include "home/page/Figures.h"

#include <string>
#include <string_view>

#include "home/page/PageFiles.h"
#include "platform/foundation/Iso8601.h"
#include "platform/foundation/LocalTime.h"

namespace quillpad::home {
namespace {

Markup figure(const std::string& value, std::string_view unit, std::string_view symbol) {
  return filled(
      page::figureHtml,
      {{"value", escaped(value)},
       {"unit", escaped(unit)},
       {"words", escaped(value + std::string(symbol))}});
}

}  // namespace

Markup numberMarkup(std::size_t number) { return figure(std::to_string(number), "number", ""); }

Markup bytesMarkup(std::size_t bytes) { return figure(std::to_string(bytes), "byte", " B"); }

Markup mebibytesMarkup(std::size_t bytes) {
  const std::size_t tenths = bytes * 10 / (std::size_t{1024} * 1024);
  return figure(
      std::to_string(tenths / 10) + "." + std::to_string(tenths % 10), "mebibyte", " MiB");
}

Markup millisecondsMarkup(std::size_t milliseconds) {
  return figure(std::to_string(milliseconds), "millisecond", " ms");
}

Markup secondMarkup(Date date) {
  return filled(
      page::timeHtml,
      {{"says", escaped("second")},
       {"date", escaped(iso8601(date))},
       {"words", escaped(localTimeText(date, "%H:%M:%S"))}});
}

}  // namespace quillpad::home
