// Tables that give values their names in a text format, for both ways:
//
//   constexpr std::array weights{Named{"regular", Weight::regular}, Named{"bold", Weight::bold}};
#pragma once

#include <algorithm>
#include <string_view>

namespace quillpad {

template <class T>
struct Named {
  std::string_view name;
  T value;
};

// The value under the name, or nullptr.
template <class Table>
constexpr auto valueNamed(const Table& table, std::string_view name) {
  const auto entry =
      std::ranges::find_if(table, [&](const auto& each) { return each.name == name; });
  return entry == std::ranges::end(table) ? nullptr : &entry->value;
}

// The name of the value, which the table must hold.
template <class Table, class T>
constexpr std::string_view nameOf(const Table& table, const T& value) {
  return std::ranges::find_if(table, [&](const auto& each) { return each.value == value; })->name;
}

}  // namespace quillpad
