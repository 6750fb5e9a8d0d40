// Moments as text in ISO 8601, in UTC and to the millisecond. Functions of their argument alone,
// callable from any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/Value.h"

namespace quillpad {

// The moment as "2026-03-07T09:05:03.250Z".
std::string iso8601(Date date);

// The moment that such a text names, or nothing if it is of another form.
std::optional<Date> dateFromIso8601(std::string_view text);

}  // namespace quillpad
