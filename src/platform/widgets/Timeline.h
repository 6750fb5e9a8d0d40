// What a provider answers: entries in time, and when to ask again. Plain values.
#pragma once

#include <concepts>
#include <vector>

#include "platform/foundation/Value.h"

namespace quillpad::widgets {

// A record that can travel to the home screen and back. `fromValue` ends the process for a value
// that it did not make.
template <class T>
concept Record = requires(const T& record, const Value& value) {
  { record.toValue() } -> std::same_as<Value>;
  { T::fromValue(value) } -> std::same_as<T>;
};

// A point in time with what to show from then on: two fields, `date` and `data`.
template <class T>
concept TimelineEntry = requires(const T& entry) {
  { entry.date } -> std::convertible_to<Date>;
  requires Record<std::remove_cvref_t<decltype(entry.data)>>;
};

// When the home screen may ask again.
class TimelineReloadPolicy {
 public:
  static TimelineReloadPolicy after(Date date) { return TimelineReloadPolicy(date); }
  Date date() const { return date_; }

 private:
  explicit TimelineReloadPolicy(Date date) : date_(date) {}
  Date date_;
};

template <TimelineEntry Entry>
struct Timeline {
  std::vector<Entry> entries;
  TimelineReloadPolicy policy;
};

}  // namespace quillpad::widgets
