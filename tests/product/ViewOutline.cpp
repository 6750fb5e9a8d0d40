#include "product/ViewOutline.h"

#include "platform/foundation/Json.h"
#include "platform/foundation/Value.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad {
namespace {

std::string text(const Value* value) { return writeJson(*value, JsonLayout::compact).value(); }

std::string color(const Value& value) {
  const auto& members = *value.as<Dictionary>();
  const std::string light = *members.find("light")->as<std::string>();
  const std::string dark = *members.find("dark")->as<std::string>();
  return light == dark ? light : light + "/" + dark;
}

// The lengths of a modifier by their names.
std::string lengths(const Value& value) {
  std::string result;
  for (const auto& [name, length] : *value.as<Dictionary>()) {
    result += " " + name + "=" + text(&length);
  }
  return result;
}

std::string modifier(const Value& value) {
  const auto& [name, argument] = *value.as<Dictionary>()->begin();
  if (name == "background") {
    return name + " " + color(argument);
  }
  if (const auto* address = argument.as<std::string>()) {
    return name + " " + *address;
  }
  return name + lengths(argument);
}

void append(std::string& result, const Value& view, int depth) {
  const auto& members = *view.as<Dictionary>();
  const std::string indent(static_cast<std::size_t>(depth) * 2, ' ');
  result += indent + *members.find("type")->as<std::string>();
  for (const char* key : {"name", "text"}) {
    if (const Value* value = members.find(key)) {
      result += " " + text(value);
    }
  }
  if (members.find("localized") != nullptr) {
    result += " localized";
  }
  if (const Value* font = members.find("font")) {
    const auto& of = *font->as<Dictionary>();
    result += " " + text(of.find("size")) + " " + *of.find("weight")->as<std::string>();
  }
  if (const Value* value = members.find("color")) {
    result += " " + color(*value);
  }
  if (const Value* modifiers = members.find("modifiers")) {
    for (const Value& each : *modifiers->as<Array>()) {
      result += " | " + modifier(each);
    }
  }
  result += "\n";
  if (const Value* children = members.find("children")) {
    for (const Value& child : *children->as<Array>()) {
      append(result, child, depth + 1);
    }
  }
}

}  // namespace

std::string outline(const ui::View& view) {
  std::string result;
  append(result, ui::toValue(view), 0);
  return result;
}

}  // namespace quillpad
