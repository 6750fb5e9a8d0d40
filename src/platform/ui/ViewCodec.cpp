#include "platform/ui/ViewCodec.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <utility>

namespace quillpad::ui {
namespace {

constexpr std::size_t deepestView = 256;
constexpr std::size_t mostViews = 100'000;
constexpr std::size_t mostModifiers = 32;  // of one view
// Far beyond any screen, and far from where sums of lengths lose their meaning.
constexpr double longestLength = 1'000'000;

template <class... Functions>
struct Overloaded : Functions... {
  using Functions::operator()...;
};

template <class Enumeration>
struct Name {
  Enumeration value;
  std::string_view name;
};

constexpr std::array weightNames{
    Name<Weight>{Weight::regular, "regular"},
    Name<Weight>{Weight::medium, "medium"},
    Name<Weight>{Weight::semibold, "semibold"}};

struct NamedLength {
  std::optional<double> FlexibleFrame::* member;
  std::string_view name;
};

constexpr std::array flexibleLengths{
    NamedLength{&FlexibleFrame::minWidth, "minWidth"},
    NamedLength{&FlexibleFrame::idealWidth, "idealWidth"},
    NamedLength{&FlexibleFrame::maxWidth, "maxWidth"},
    NamedLength{&FlexibleFrame::minHeight, "minHeight"},
    NamedLength{&FlexibleFrame::idealHeight, "idealHeight"},
    NamedLength{&FlexibleFrame::maxHeight, "maxHeight"}};

// Writing.

void setIfPresent(Dictionary& members, std::string_view name, const std::optional<double>& length) {
  if (length) {
    members.set(std::string(name), *length);
  }
}

// "#11B826", or "#11B82680" where it is not opaque.
std::string hexText(Rgba color) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text = "#";
  const auto append = [&](std::uint8_t component) {
    text += digits[component >> 4];
    text += digits[component & 15];
  };
  append(color.red);
  append(color.green);
  append(color.blue);
  if (color.alpha != 255) {
    append(color.alpha);
  }
  return text;
}

Value colorValue(const Color& color) {
  return Dictionary{{"light", hexText(color.light)}, {"dark", hexText(color.dark)}};
}

Value fontValue(const Font& font) {
  std::string_view weight;
  for (const auto& known : weightNames) {
    if (known.value == font.weight) {
      weight = known.name;
    }
  }
  return Dictionary{{"size", font.size}, {"weight", weight}};
}

Value modifierValue(const Modifier& modifier) {
  return std::visit(
      Overloaded{
          [](const Padding& padding) -> Value {
            const EdgeInsets& insets = padding.insets;
            return Dictionary{
                {"padding",
                 Dictionary{
                     {"top", insets.top},
                     {"leading", insets.leading},
                     {"bottom", insets.bottom},
                     {"trailing", insets.trailing}}}};
          },
          [](const Frame& frame) -> Value {
            Dictionary lengths;
            setIfPresent(lengths, "width", frame.width);
            setIfPresent(lengths, "height", frame.height);
            return Dictionary{{"frame", std::move(lengths)}};
          },
          [](const FlexibleFrame& frame) -> Value {
            Dictionary lengths;
            for (const NamedLength& length : flexibleLengths) {
              setIfPresent(lengths, length.name, frame.*length.member);
            }
            return Dictionary{{"flexibleFrame", std::move(lengths)}};
          },
          [](const Background& background) -> Value {
            return Dictionary{{"background", colorValue(background.color)}};
          },
          [](const ClipShape& shape) -> Value {
            return Dictionary{{"clipShape", Dictionary{{"cornerRadius", shape.cornerRadius}}}};
          },
          [](const WidgetUrl& url) -> Value { return Dictionary{{"widgetURL", url.address}}; }},
      modifier);
}

Dictionary contentMembers(const Content& content) {
  return std::visit(
      Overloaded{
          [](const Text& text) {
            Dictionary members{{"type", "text"}, {"text", text.text}};
            if (text.localized) {
              members.set("localized", true);
            }
            members.set("font", fontValue(text.textFont));
            if (text.color) {
              members.set("color", colorValue(*text.color));
            }
            return members;
          },
          [](const Image& image) { return Dictionary{{"type", "image"}, {"name", image.name}}; },
          [](const Rectangle& rectangle) {
            return Dictionary{{"type", "rectangle"}, {"color", colorValue(rectangle.color)}};
          },
          [](const Spacer&) { return Dictionary{{"type", "spacer"}}; },
          [](const Stack& stack) {
            Array children;
            children.reserve(stack.children.size());
            for (const View& child : stack.children) {
              children.push_back(toValue(child));
            }
            return Dictionary{
                {"type", stack.axis == Axis::vertical ? "vstack" : "hstack"},
                {"children", std::move(children)}};
          }},
      content);
}

// Reading. The reader notes the first thing that is wrong and goes on with empty values; whoever
// called it discards the view then.
class Reader {
 public:
  std::expected<View, std::string> read(const Value& value) {
    View read = view(value);
    if (!problem_.empty()) {
      return std::unexpected(std::move(problem_));
    }
    return read;
  }

 private:
  // A step down from the root: the index of an element, or the key of a member.
  struct Step {
    std::string_view key{};
    std::size_t index = 0;
  };

  // While it lives, what is read lies one step further down.
  class Descent {
   public:
    Descent(Reader& reader, Step step) : reader_(reader) { reader_.path_.push_back(step); }
    ~Descent() { reader_.path_.pop_back(); }
    Descent(const Descent&) = delete;
    Descent& operator=(const Descent&) = delete;

   private:
    Reader& reader_;
  };

  void fail(std::string_view what) {
    if (!problem_.empty()) {
      return;
    }
    problem_ = "view";
    for (const Step& step : path_) {
      problem_ +=
          step.key.empty() ? "[" + std::to_string(step.index) + "]" : "." + std::string(step.key);
    }
    problem_.append(": ").append(what);
  }

  template <class T>
  const T& as(const Value& value, std::string_view what) {
    static const T nothing{};
    const auto* typed = value.as<T>();
    if (typed == nullptr) {
      fail(what);
    }
    return typed != nullptr ? *typed : nothing;
  }

  // The member read by `readValue`, or `absent` where it is missing.
  template <class T, class ReadValue>
  T optionalMember(const Dictionary& members, std::string_view key, T absent, ReadValue readValue) {
    const Value* value = members.find(key);
    if (value == nullptr) {
      return absent;
    }
    const Descent descent(*this, {.key = key});
    return readValue(*value);
  }

  template <class T, class ReadValue>
  T member(const Dictionary& members, std::string_view key, T absent, ReadValue readValue) {
    if (members.find(key) == nullptr) {
      fail("no \"" + std::string(key) + "\"");
    }
    return optionalMember<T>(members, key, std::move(absent), readValue);
  }

  std::string text(const Dictionary& members, std::string_view key) {
    return member<std::string>(members, key, {}, [this](const Value& value) {
      return as<std::string>(value, "not a text");
    });
  }

  double length(const Value& value) {
    const auto* number = value.as<Number>();
    const double length = number != nullptr ? number->doubleValue() : NAN;
    if (number == nullptr) {
      fail("not a number");
    } else if (!(std::abs(length) <= longestLength)) {
      fail("longer than 1000000 points");
    }
    return length;
  }

  double length(const Dictionary& members, std::string_view key) {
    return member<double>(members, key, 0, [this](const Value& value) { return length(value); });
  }

  std::optional<double> optionalLength(const Dictionary& members, std::string_view key) {
    return optionalMember<std::optional<double>>(
        members, key, {}, [this](const Value& value) { return length(value); });
  }

  Rgba hexColor(const Dictionary& members, std::string_view key) {
    return member<Rgba>(members, key, {}, [this](const Value& value) {
      const auto& text = as<std::string>(value, "not a text");
      std::uint32_t components = 0;
      const char* const end = text.data() + text.size();
      const bool opaque = text.size() == 7;
      if ((!opaque && text.size() != 9) || text[0] != '#' ||
          std::from_chars(text.data() + 1, end, components, 16).ptr != end) {
        fail(R"(not a colour like "#11B826")");
        return Rgba{};
      }
      if (opaque) {
        components = components << 8 | 255;
      }
      const auto component = [&](int shift) {
        return static_cast<std::uint8_t>(components >> shift);
      };
      return Rgba{component(24), component(16), component(8), component(0)};
    });
  }

  Color color(const Value& value) {
    const auto& members = as<Dictionary>(value, R"(not an object with "light" and "dark")");
    return {hexColor(members, "light"), hexColor(members, "dark")};
  }

  Font font(const Value& value) {
    const auto& members = as<Dictionary>(value, R"(not an object with "size" and "weight")");
    Font font{.size = length(members, "size")};
    if (font.size <= 0) {
      fail("the size is not above 0");
    }
    const std::string weight = text(members, "weight");
    for (const auto& known : weightNames) {
      if (known.name == weight) {
        font.weight = known.value;
        return font;
      }
    }
    fail("unknown weight");
    return font;
  }

  Modifier modifier(const Value& value) {
    const auto& members = as<Dictionary>(value, "not an object");
    if (members.size() != 1) {
      fail("not an object with one member");
      return Padding{};
    }
    const auto& [name, argument] = *members.begin();
    if (name == "widgetURL") {
      return WidgetUrl{as<std::string>(argument, "not a text")};
    }
    if (name == "background") {
      return Background{color(argument)};
    }
    const auto& lengths = as<Dictionary>(argument, "not an object");
    if (name == "padding") {
      return Padding{
          {.top = length(lengths, "top"),
           .leading = length(lengths, "leading"),
           .bottom = length(lengths, "bottom"),
           .trailing = length(lengths, "trailing")}};
    }
    if (name == "frame") {
      return Frame{
          .width = optionalLength(lengths, "width"), .height = optionalLength(lengths, "height")};
    }
    if (name == "flexibleFrame") {
      FlexibleFrame frame;
      for (const NamedLength& each : flexibleLengths) {
        frame.*each.member = optionalLength(lengths, each.name);
      }
      return frame;
    }
    if (name == "clipShape") {
      return ClipShape{length(lengths, "cornerRadius")};
    }
    fail("unknown modifier");
    return Padding{};
  }

  // The elements of an array member, each read by `readElement`; none where it is missing.
  template <class T, class ReadElement>
  std::vector<T> elements(
      const Dictionary& members, std::string_view key, ReadElement readElement) {
    return optionalMember<std::vector<T>>(members, key, {}, [&](const Value& value) {
      const auto& array = as<Array>(value, "not an array");
      std::vector<T> result;
      for (std::size_t i = 0; i < array.size() && problem_.empty(); ++i) {
        const Descent descent(*this, {.index = i});
        result.push_back(readElement(array[i]));
      }
      return result;
    });
  }

  Stack stack(Axis axis, const Dictionary& members) {
    return {axis, elements<View>(members, "children", [this](const Value& child) {
              return view(child);
            })};
  }

  Content content(const Dictionary& members) {
    const std::string type = text(members, "type");
    const auto readColor = [this](const Value& value) { return color(value); };
    if (type == "vstack") {
      return stack(Axis::vertical, members);
    }
    if (type == "hstack") {
      return stack(Axis::horizontal, members);
    }
    if (type == "text") {
      Text result = Text::verbatim(text(members, "text"));
      result.localized =
          optionalMember<bool>(members, "localized", false, [this](const Value& value) {
            const auto* number = value.as<Number>();
            const bool* truth = number != nullptr ? std::get_if<bool>(&number->storage()) : nullptr;
            if (truth == nullptr) {
              fail("not true or false");
            }
            return truth != nullptr && *truth;
          });
      result.textFont =
          member<Font>(members, "font", {}, [this](const Value& value) { return font(value); });
      result.color = optionalMember<std::optional<Color>>(members, "color", {}, readColor);
      return result;
    }
    if (type == "image") {
      return Image(text(members, "name"));
    }
    if (type == "rectangle") {
      return Rectangle(member<Color>(members, "color", Rgba{}, readColor));
    }
    if (type != "spacer") {
      fail("unknown type");
    }
    return Spacer();
  }

  View view(const Value& value) {
    ++depth_;
    ++views_;
    View result = Spacer();
    if (depth_ > deepestView) {
      fail("more than 256 views deep");
    } else if (views_ > mostViews) {
      fail("more than 100000 views");
    } else {
      const auto& members = as<Dictionary>(value, "not an object");
      result.modifiers = elements<Modifier>(
          members, "modifiers", [this](const Value& each) { return modifier(each); });
      if (result.modifiers.size() > mostModifiers) {
        fail("more than 32 modifiers");
      }
      result.content = content(members);
    }
    --depth_;
    return result;
  }

  std::vector<Step> path_;
  std::string problem_;
  std::size_t depth_ = 0;
  std::size_t views_ = 0;
};

}  // namespace

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

Value toValue(const View& view) {
  Dictionary members = contentMembers(view.content);
  if (!view.modifiers.empty()) {
    Array modifiers;
    modifiers.reserve(view.modifiers.size());
    for (const Modifier& modifier : view.modifiers) {
      modifiers.push_back(modifierValue(modifier));
    }
    members.set("modifiers", std::move(modifiers));
  }
  return members;
}

std::expected<View, std::string> viewFromValue(const Value& value) { return Reader().read(value); }

}  // namespace quillpad::ui
