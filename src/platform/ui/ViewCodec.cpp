#include "platform/ui/ViewCodec.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <utility>

#include "platform/foundation/Codec.h"
#include "platform/foundation/Hex.h"
#include "platform/foundation/NumberText.h"

namespace quillpad {
namespace {

constexpr std::size_t maxDepth = 256;
constexpr std::size_t maxParts = 10'000;

// Of each text only as much counts as may be shaped of it.
constexpr std::size_t maxTextBytes = std::size_t{64} << 10;
constexpr std::size_t maxBytesOfText = std::size_t{1} << 14;
constexpr std::size_t maxModifiers = 32;  // of one view
// Far beyond any screen, and far from where sums of lengths lose their meaning.
constexpr double maxLength = 1'000'000;

// Lengths in points.
struct Length {
  static Value encode(double length) { return length; }
  static double decode(const Decoder& d) {
    const double length = d.number();
    if (!(std::abs(length) <= maxLength)) {
      d.fail("longer than " + Number(maxLength).stringValue() + " points");
    }
    return length;
  }
};

struct FontSize {
  static Value encode(double size) { return size; }
  static double decode(const Decoder& d) {
    const double size = Length::decode(d);
    if (size <= 0) {
      d.fail("not above 0");
    }
    return size;
  }
};

}  // namespace

// "#11B826", or "#11B82680" where it is not opaque.
template <>
struct Codec<ui::Rgba> {
  static Value encode(ui::Rgba color) {
    std::string text =
        "#" + upperHexByte(color.red) + upperHexByte(color.green) + upperHexByte(color.blue);
    if (color.alpha != 255) {
      text += upperHexByte(color.alpha);
    }
    return text;
  }

  static ui::Rgba decode(const Decoder& d) {
    const std::string& text = d.text();
    const bool opaque = text.size() == 7;
    std::uint32_t components = 0;
    const char* const end = text.data() + text.size();
    if ((!opaque && text.size() != 9) || text[0] != '#' ||
        std::from_chars(text.data() + 1, end, components, 16).ptr != end) {
      d.fail(R"(not a colour like "#11B826")");
      return {};
    }
    if (opaque) {
      components = components << 8 | 255;
    }
    const auto component = [&](int shift) {
      return static_cast<std::uint8_t>(components >> shift);
    };
    return {component(24), component(16), component(8), component(0)};
  }
};

template <>
constexpr std::tuple fieldsOf<ui::Color>{
    Field{"light", &ui::Color::light}, Field{"dark", &ui::Color::dark}};

template <>
constexpr auto namesOf<ui::Weight> = ui::weightNames;

template <>
constexpr std::tuple fieldsOf<ui::Font>{
    fieldAs<FontSize>("size", &ui::Font::size), Field{"weight", &ui::Font::weight}};

// The modifiers: objects with one member, whose name is the modifier's.

const auto& modifierTypes() {
  static const std::array table{
      Named<ui::Modifier>{"padding", ui::Padding{}},
      Named<ui::Modifier>{"frame", ui::Frame{}},
      Named<ui::Modifier>{"flexibleFrame", ui::FlexibleFrame{}},
      Named<ui::Modifier>{"background", ui::Background{}},
      Named<ui::Modifier>{"clipShape", ui::ClipShape{}},
      Named<ui::Modifier>{"widgetURL", ui::WidgetUrl{}}};
  static_assert(table.size() == std::variant_size_v<ui::Modifier>);
  return table;
}

template <>
constexpr std::tuple fieldsOf<ui::EdgeInsets>{
    fieldAs<Length>("top", &ui::EdgeInsets::top),
    fieldAs<Length>("leading", &ui::EdgeInsets::leading),
    fieldAs<Length>("bottom", &ui::EdgeInsets::bottom),
    fieldAs<Length>("trailing", &ui::EdgeInsets::trailing)};
template <>
constexpr auto fieldsOf<ui::Padding> = &ui::Padding::insets;

template <>
constexpr std::tuple fieldsOf<ui::Frame>{
    fieldAs<Length>("width", &ui::Frame::width), fieldAs<Length>("height", &ui::Frame::height)};

template <>
constexpr std::tuple fieldsOf<ui::FlexibleFrame>{
    fieldAs<Length>("minWidth", &ui::FlexibleFrame::minWidth),
    fieldAs<Length>("idealWidth", &ui::FlexibleFrame::idealWidth),
    fieldAs<Length>("maxWidth", &ui::FlexibleFrame::maxWidth),
    fieldAs<Length>("minHeight", &ui::FlexibleFrame::minHeight),
    fieldAs<Length>("idealHeight", &ui::FlexibleFrame::idealHeight),
    fieldAs<Length>("maxHeight", &ui::FlexibleFrame::maxHeight)};

template <>
constexpr auto fieldsOf<ui::Background> = &ui::Background::color;

template <>
constexpr std::tuple fieldsOf<ui::ClipShape>{
    fieldAs<Length>("cornerRadius", &ui::ClipShape::cornerRadius)};

template <>
constexpr auto fieldsOf<ui::WidgetUrl> = &ui::WidgetUrl::address;

template <>
struct Codec<ui::Modifier> {
  static Value encode(const ui::Modifier& modifier) {
    const std::string name(alternativeName(modifierTypes(), modifier));
    return std::visit(
        [&](const auto& one) { return Dictionary{{name, quillpad::encode(one)}}; }, modifier);
  }

  static ui::Modifier decode(const Decoder& d) {
    const auto members = d.members();
    if (members.size() != 1) {
      d.fail("not an object with one member");
      return ui::Padding{};
    }
    const auto& [name, argument] = members.front();
    const auto* type = valueNamed(modifierTypes(), name);
    if (type == nullptr) {
      d.fail("unknown modifier");
      return ui::Padding{};
    }
    return decodeAlternative(argument, *type);
  }
};

// The contents: objects with a "type", and the modifiers beside their own members.

const auto& contentTypes() {
  static const std::array table{
      Named<ui::Content>{"text", ui::Text::verbatim({})},
      Named<ui::Content>{"image", ui::Image({})},
      Named<ui::Content>{"rectangle", ui::Rectangle({})},
      Named<ui::Content>{"spacer", ui::Spacer()},
      Named<ui::Content>{"vstack", ui::Stack{ui::Axis::vertical, {}}},
      Named<ui::Content>{"hstack", ui::Stack{ui::Axis::horizontal, {}}}};
  static_assert(table.size() == std::variant_size_v<ui::Content> + 1, "a stack has two names");
  return table;
}

std::string_view typeOf(const ui::Content& content) {
  const auto* stack = std::get_if<ui::Stack>(&content);
  return stack != nullptr && stack->axis == ui::Axis::horizontal
             ? "hstack"
             : alternativeName(contentTypes(), content);
}

template <>
constexpr std::tuple fieldsOf<ui::Text>{
    Field{"text", &ui::Text::text},
    Field{"localized", &ui::Text::localized, Presence::optional},
    Field{"font", &ui::Text::textFont},
    Field{"color", &ui::Text::color}};

template <>
constexpr std::tuple fieldsOf<ui::Image>{Field{"name", &ui::Image::name}};

template <>
constexpr std::tuple fieldsOf<ui::Rectangle>{Field{"color", &ui::Rectangle::color}};

template <>
constexpr std::tuple<> fieldsOf<ui::Spacer>{};

template <>
struct Codec<ui::View> {
  static Value encode(const ui::View& view);
  static ui::View decode(const Decoder& d);
};

template <>
constexpr std::tuple fieldsOf<ui::Stack>{
    Field{"children", &ui::Stack::children, Presence::defaulted}};

template <>
constexpr std::tuple fieldsOf<ui::View>{
    Field{"modifiers", &ui::View::modifiers, Presence::optional}};

Value Codec<ui::View>::encode(const ui::View& view) {
  Dictionary object{{"type", typeOf(view.content)}};
  std::visit([&](const auto& content) { encodeMembers(object, content); }, view.content);
  encodeMembers(object, view);
  return object;
}

ui::View Codec<ui::View>::decode(const Decoder& d) {
  ui::View view = ui::Spacer();
  decodeMembers(d, view);
  view.content = decodeAlternative(d, d["type"].oneOf(contentTypes()));
  return view;
}

namespace {

struct Extent {
  std::size_t parts = 0;
  std::size_t textBytes = 0;
};

// Fails for a tree that is deeper or larger than any in use, before anything of it is made.
void checkExtent(const Decoder& view, std::size_t depth, Extent& extent) {
  if (depth > maxDepth) {
    view.fail("more than " + std::to_string(maxDepth) + " views deep");
  }
  ++extent.parts;
  if (const auto text = view.find("text")) {
    extent.textBytes += std::min(text->text().size(), maxBytesOfText);
    if (extent.textBytes > maxTextBytes) {
      view.fail("more than " + bytesText(maxTextBytes) + " of texts");
    }
  }
  if (const auto modifiers = view.find("modifiers")) {
    extent.parts += modifiers->elements(maxModifiers).size();
  }
  if (extent.parts > maxParts) {
    view.fail("more than " + std::to_string(maxParts) + " views and modifiers");
  }
  if (const auto children = view.find("children")) {
    for (const Decoder& child : children->elements()) {
      checkExtent(child, depth + 1, extent);
    }
  }
}

}  // namespace

namespace ui {

View localized(View view, const std::function<std::string(const std::string& key)>& lookUp) {
  if (auto* text = std::get_if<Text>(&view.content); text != nullptr && text->localized) {
    text->text = lookUp(text->text);
    text->localized = false;
  } else if (auto* stack = std::get_if<Stack>(&view.content)) {
    for (View& child : stack->children) {
      child = localized(std::move(child), lookUp);
    }
  }
  return view;
}

Value toValue(const View& view) { return encode(view); }

View viewFrom(const Decoder& d) {
  Extent extent;
  checkExtent(d, 1, extent);
  return decode<View>(d);
}

std::expected<View, std::string> viewFromValue(const Value& value) {
  const Decoder d(value, "view");
  return d.result(viewFrom(d));
}

}  // namespace ui

}  // namespace quillpad
