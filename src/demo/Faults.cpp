#include "demo/Faults.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace quillpad::demo {
namespace {

struct NamedDamage {
  std::string_view item;
  Damage damage;
};

constexpr std::array<NamedDamage, 11> damages = {{
    {"drop", Damage::drop},
    {"truncate", Damage::truncate},
    {"not-json", Damage::notJson},
    {"shape=fragment", Damage::fragment},
    {"shape=no-data", Damage::noData},
    {"shape=data-object", Damage::dataObject},
    {"shape=inner-not-json", Damage::innerNotJson},
    {"shape=inner-array", Damage::innerArray},
    {"shape=missing-key", Damage::missingKey},
    {"shape=figure-text", Damage::figureText},
    {"shape=records-object", Damage::recordsObject},
}};

std::optional<int> number(std::string_view text, int min, int max) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < min || value > max) {
    return {};
  }
  return value;
}

// False if the item is not understood.
bool apply(std::string_view item, Fault& fault) {
  const auto damage = std::ranges::find(damages, item, &NamedDamage::item);
  if (damage != damages.end()) {
    fault.damage = damage->damage;
    return true;
  }
  const std::size_t equals = item.find('=');
  if (equals == item.npos) {
    return item == "off";
  }
  const std::string_view key = item.substr(0, equals);
  const std::string_view value = item.substr(equals + 1);
  if (key == "delay") {
    const std::optional<int> delay = number(value, 0, 600'000);
    fault.delay = std::chrono::milliseconds(delay.value_or(0));
    return delay.has_value();
  }
  if (key == "status") {
    fault.status = number(value, 200, 599);
    return fault.status.has_value();
  }
  if (key == "count") {
    fault.count = number(value, 1, 1'000'000);
    return fault.count.has_value();
  }
  fault.path = value;
  return key == "path" && (value == "getDataMap" || value == "listFast");
}

}  // namespace

std::expected<Fault, std::string> Fault::parse(std::string_view items) {
  Fault fault;
  while (true) {
    const std::size_t comma = items.find(',');
    const std::string_view item = items.substr(0, comma);
    if (!apply(item, fault)) {
      return std::unexpected("'" + std::string(item) + "' is no fault");
    }
    if (comma == items.npos) {
      return fault;
    }
    items.remove_prefix(comma + 1);
  }
}

std::string Fault::items() const {
  std::string items;
  const auto add = [&items](std::string_view item) {
    items.append(items.empty() ? "" : ",").append(item);
  };
  if (status) {
    add("status=" + std::to_string(*status));
  }
  const auto named = std::ranges::find(damages, damage, &NamedDamage::damage);
  if (named != damages.end()) {
    add(named->item);
  }
  if (!path.empty()) {
    add("path=" + path);
  }
  if (count) {
    add("count=" + std::to_string(*count));
  }
  return items.empty() ? "off" : items;
}

std::vector<std::string> offeredFaults() {
  std::vector<std::string> faults{"off", "status=401", "status=404", "status=500", "status=503"};
  for (const NamedDamage& damage : damages) {
    faults.emplace_back(damage.item);
  }
  return faults;
}

std::string_view faultHelp() {
  return "delay=MS, status=N, drop, truncate, not-json, shape=fragment, shape=no-data, "
         "shape=data-object, shape=inner-not-json, shape=inner-array, shape=missing-key, "
         "shape=figure-text, shape=records-object, off; limited with path=getDataMap, "
         "path=listFast or count=N; several between commas";
}

void FaultSwitch::set(Fault fault) {
  const std::lock_guard lock(mutex_);
  fault_ = std::move(fault);
}

Fault FaultSwitch::current() {
  const std::lock_guard lock(mutex_);
  return fault_;
}

Fault FaultSwitch::take(std::string_view path) {
  const std::lock_guard lock(mutex_);
  if (!path.ends_with(fault_.path)) {
    return {};
  }
  if (!fault_.count) {
    return fault_;
  }
  Fault fault = fault_;
  if (--*fault_.count == 0) {
    fault_ = {};
  }
  return fault;
}

}  // namespace quillpad::demo
