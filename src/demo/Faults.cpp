#include "demo/Faults.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace quillpad::demo {
namespace {

struct NamedDamage {
  std::string_view name;
  Damage damage;
};

constexpr std::array<NamedDamage, 3> items = {{
    {"drop", Damage::drop},
    {"truncate", Damage::truncate},
    {"not-json", Damage::notJson},
}};

constexpr std::array<NamedDamage, 8> shapes = {{
    {"fragment", Damage::fragment},
    {"no-data", Damage::noData},
    {"data-object", Damage::dataObject},
    {"inner-not-json", Damage::innerNotJson},
    {"inner-array", Damage::innerArray},
    {"missing-key", Damage::missingKey},
    {"figure-text", Damage::figureText},
    {"records-object", Damage::recordsObject},
}};

std::optional<int> number(std::string_view text, int min, int max) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < min || value > max) {
    return {};
  }
  return value;
}

template <std::size_t count>
std::optional<Damage> named(const std::array<NamedDamage, count>& table, std::string_view name) {
  const auto found = std::ranges::find(table, name, &NamedDamage::name);
  return found == table.end() ? std::nullopt : std::optional(found->damage);
}

// False if the item is not understood.
bool apply(std::string_view item, Fault& fault) {
  const std::size_t equals = item.find('=');
  const std::string_view key = item.substr(0, equals);
  if (equals == item.npos) {
    const std::optional<Damage> damage = named(items, key);
    fault.damage = damage.value_or(fault.damage);
    return damage.has_value() || key == "off";
  }
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
  if (key == "path") {
    fault.path = value;
    return value == "getDataMap" || value == "listFast";
  }
  const std::optional<Damage> damage = key == "shape" ? named(shapes, value) : std::nullopt;
  fault.damage = damage.value_or(fault.damage);
  return damage.has_value();
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
