#include "platform/paint/DisplayListJson.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace quillpad::drawing {
namespace {

std::string_view weightName(ui::Weight weight) {
  switch (weight) {
    case ui::Weight::regular:
      return "regular";
    case ui::Weight::medium:
      return "medium";
    case ui::Weight::semibold:
      return "semibold";
  }
  return "";
}

std::string_view appearanceName(ui::Appearance appearance) {
  switch (appearance) {
    case ui::Appearance::light:
      return "light";
    case ui::Appearance::dark:
      return "dark";
    case ui::Appearance::unspecified:
      break;
  }
  return "unspecified";
}

class Writer {
 public:
  explicit Writer(ui::Appearance appearance) : appearance_(appearance) {}

  std::string take() { return std::move(json_); }

  Writer& raw(std::string_view text) {
    json_ += text;
    return *this;
  }

  Writer& number(double value) {
    constexpr double thousandths = 1000;
    const double rounded = std::round(value * thousandths) / thousandths;
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), rounded + 0.0);
    json_.append(digits.data(), end.ptr);
    return *this;
  }

  Writer& string(std::string_view text) {
    json_ += '"';
    for (const char byte : text) {
      if (byte == '"' || byte == '\\') {
        json_ += '\\';
        json_ += byte;
      } else if (static_cast<unsigned char>(byte) < 0x20) {
        json_ += "\\u00";
        hex(static_cast<std::uint8_t>(byte), "0123456789abcdef");
      } else {
        json_ += byte;
      }
    }
    json_ += '"';
    return *this;
  }

  Writer& color(const ui::Color& pair) {
    const ui::Rgba color = pair.resolved(appearance_);
    constexpr std::string_view digits = "0123456789ABCDEF";
    json_ += "\"#";
    hex(color.red, digits);
    hex(color.green, digits);
    hex(color.blue, digits);
    if (color.alpha != 255) {
      hex(color.alpha, digits);
    }
    json_ += '"';
    return *this;
  }

  Writer& frame(const Rect& frame) {
    raw(R"({"x":)").number(frame.x).raw(R"(,"y":)").number(frame.y);
    return raw(R"(,"width":)")
        .number(frame.width)
        .raw(R"(,"height":)")
        .number(frame.height)
        .raw("}");
  }

  void content(const Fill& fill) {
    raw(R"({"type":"fill","frame":)").frame(fill.frame).raw(R"(,"color":)").color(fill.color);
    raw(R"(,"cornerRadius":)").number(fill.cornerRadius);
  }

  void content(const TextItem& text) {
    raw(R"({"type":"text","text":)").string(text.text).raw(R"(,"frame":)").frame(text.frame);
    raw(R"(,"font":{"size":)").number(text.font.size);
    raw(R"(,"weight":)").string(weightName(text.font.weight));
    raw(R"(},"color":)").color(text.color);
  }

  void content(const ImageItem& image) {
    raw(R"({"type":"image","name":)").string(image.name).raw(R"(,"frame":)").frame(image.frame);
  }

  void item(const Item& item) {
    std::visit([this](const auto& alternative) { content(alternative); }, item.content);
    if (!item.clips.empty()) {
      raw(R"(,"clips":[)");
      const char* separator = "";
      for (const Clip& clip : item.clips) {
        raw(separator).raw(R"({"frame":)").frame(clip.frame);
        raw(R"(,"cornerRadius":)").number(clip.cornerRadius).raw("}");
        separator = ",";
      }
      raw("]");
    }
    raw("}");
  }

 private:
  void hex(std::uint8_t byte, std::string_view digits) {
    json_ += digits[byte >> 4U];
    json_ += digits[byte & 15U];
  }

  ui::Appearance appearance_;
  std::string json_;
};

}  // namespace

std::string toJson(const DisplayList& list, ui::Appearance appearance) {
  Writer json(appearance);
  json.raw(R"({"kind":)").string(list.kind).raw(R"(,"family":)").string(list.family);
  json.raw(R"(,"appearance":)").string(appearanceName(appearance));
  json.raw(R"(,"scale":)").number(list.scale);
  json.raw(R"(,"size":{"width":)").number(list.size.width);
  json.raw(R"(,"height":)").number(list.size.height).raw("},\n ").raw(R"("link":)");
  if (list.link) {
    json.string(*list.link);
  } else {
    json.raw("null");
  }
  json.raw(",\n ").raw(R"("items":[)");
  const char* separator = "\n  ";
  for (const Item& item : list.items) {
    json.raw(separator).item(item);
    separator = ",\n  ";
  }
  json.raw("]}\n");
  return json.take();
}

}  // namespace quillpad::drawing
