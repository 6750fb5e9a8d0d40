#include "home/commands/EntryText.h"

#include <algorithm>
#include <vector>

#include "home/commands/TextTable.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/LocalTime.h"

namespace quillpad::home {
namespace {

// A value that fits in one cell.
Cell cell(const Value& value) {
  if (const auto* text = value.as<std::string>()) {
    return {*text};
  }
  if (const auto* number = value.as<Number>()) {
    return {number->stringValue(), true};
  }
  return {writeJson(value, JsonLayout::compact).value_or("?")};
}

bool isRow(const Value& value) { return value.as<Dictionary>() != nullptr; }

// The rows under a heading that names every key that one of them has.
std::string describeRows(const Array& rows) {
  std::vector<std::string> keys;
  for (const Value& row : rows) {
    for (const auto& [key, value] : *row.as<Dictionary>()) {
      if (std::ranges::find(keys, key) == keys.end()) {
        keys.push_back(key);
      }
    }
  }

  const auto cellOf = [](const Value& row, const std::string& key) {
    const Value* value = row.as<Dictionary>()->find(key);
    return value == nullptr ? Cell{} : cell(*value);
  };
  std::vector<Cell> heading;
  heading.reserve(keys.size());
  for (const std::string& key : keys) {
    const bool numbers =
        std::ranges::any_of(rows, [&](const Value& row) { return cellOf(row, key).alignedRight; });
    heading.push_back({key, numbers});
  }
  TextTable table;
  table.addRow(std::move(heading));
  for (const Value& row : rows) {
    std::vector<Cell> cells;
    cells.reserve(keys.size());
    for (const std::string& key : keys) {
      cells.push_back(cellOf(row, key));
    }
    table.addRow(std::move(cells));
  }
  return table.text(4);
}

std::string describeData(const Value& data) {
  const auto* members = data.as<Dictionary>();
  if (members == nullptr) {
    return "  " + printable(cell(data).text) + '\n';
  }
  TextTable fields;
  std::string tables;
  for (const auto& [key, value] : *members) {
    const auto* rows = value.as<Array>();
    if (rows == nullptr || !std::ranges::all_of(*rows, isRow)) {
      fields.addRow({{key}, cell(value)});
    } else if (rows->empty()) {
      fields.addRow({{key}, {"(none)"}});
    } else {
      tables += "  " + printable(key) + '\n' + describeRows(*rows);
    }
  }
  return fields.text(2) + tables;
}

std::string wallClock(Date date) { return localTimeText(date, "%Y-%m-%d %H:%M:%S"); }

}  // namespace

std::string describe(const channel::Catalogue& catalogue) {
  TextTable table;
  table.addRow({{"Kind"}, {"Family"}, {"Name"}, {"Description"}});
  for (const channel::CatalogueItem& item : catalogue.items) {
    std::string families;
    for (const ui::WidgetFamily family : item.families) {
      families += (families.empty() ? "" : ", ") + std::string(ui::familyName(family));
    }
    table.addRow({{item.kind}, {families}, {item.displayName}, {item.description}});
  }
  return table.text(0);
}

std::string describe(const channel::Entry& entry) {
  return wallClock(entry.date) + '\n' + describeData(entry.data);
}

std::string describe(const channel::Timeline& timeline) {
  std::string text;
  for (const channel::Entry& entry : timeline.entries) {
    text += describe(entry);
  }
  return text + "Reloads after " + wallClock(timeline.policy.after) + '\n';
}

}  // namespace quillpad::home
