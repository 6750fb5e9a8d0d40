#include "platform/paint/DisplayListJson.h"

#include <array>
#include <cmath>
#include <utility>

#include "platform/foundation/Json.h"
#include "platform/foundation/Named.h"

namespace quillpad::drawing {
namespace {

// Lengths have three decimals at most; one that is no number is 0.
Value length(double points) {
  constexpr double thousandths = 1000;
  return std::isfinite(points) ? std::round(points * thousandths) / thousandths + 0.0 : 0.0;
}

Value frame(const Rect& frame) {
  return Dictionary{
      {"x", length(frame.x)},
      {"y", length(frame.y)},
      {"width", length(frame.width)},
      {"height", length(frame.height)}};
}

Dictionary membersOf(const Fill& fill, ui::Appearance appearance) {
  return {
      {"type", "fill"},
      {"frame", frame(fill.frame)},
      {"color", hexName(fill.color.resolved(appearance))},
      {"cornerRadius", length(fill.cornerRadius)}};
}

Dictionary membersOf(const TextItem& text, ui::Appearance appearance) {
  return {
      {"type", "text"},
      {"text", text.text},
      {"frame", frame(text.frame)},
      {"font",
       Dictionary{
           {"size", length(text.font.size)},
           {"weight", nameOf(ui::weightNames, text.font.weight)}}},
      {"color", hexName(text.color.resolved(appearance))}};
}

Dictionary membersOf(const ImageItem& image, ui::Appearance /*appearance*/) {
  return {{"type", "image"}, {"name", image.name}, {"frame", frame(image.frame)}};
}

Value valueOf(const Item& item, ui::Appearance appearance) {
  Dictionary members =
      std::visit([&](const auto& content) { return membersOf(content, appearance); }, item.content);
  if (!item.clips.empty()) {
    Array clips;
    for (const Clip& clip : item.clips) {
      clips.emplace_back(
          Dictionary{{"frame", frame(clip.frame)}, {"cornerRadius", length(clip.cornerRadius)}});
    }
    members.set("clips", std::move(clips));
  }
  return members;
}

// A name that is no UTF-8 cannot be written as JSON.
std::string compact(const Value& value) {
  return writeJson(value, JsonLayout::compact).value_or("null");
}

}  // namespace

std::string toJson(const DisplayList& list, ui::Appearance appearance) {
  std::string json = compact(Dictionary{
      {"kind", list.kind},
      {"family", list.family},
      {"appearance", ui::appearanceName(appearance)},
      {"scale", list.scale},
      {"size",
       Dictionary{{"width", length(list.size.width)}, {"height", length(list.size.height)}}}});
  json.pop_back();
  json += ",\n \"link\":" + compact(list.link ? Value(*list.link) : Value());
  json += ",\n \"items\":[";
  const char* separator = "\n  ";
  for (const Item& item : list.items) {
    json += separator + compact(valueOf(item, appearance));
    separator = ",\n  ";
  }
  return json + "]}\n";
}

}  // namespace quillpad::drawing
