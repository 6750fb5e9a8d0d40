#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <type_traits>

#include "platform/foundation/Hex.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/Utf8.h"

namespace quillpad {
namespace {

class JsonWriter {
 public:
  explicit JsonWriter(JsonLayout layout) : pretty_(layout == JsonLayout::pretty) {}

  void write(const Value& value) {
    std::visit([this](const auto& content) { writeContent(content); }, value.storage());
  }

  // Why the value is no JSON; empty where it is.
  const std::string& fault() const { return fault_; }
  std::string takeText() { return std::move(text_); }

 private:
  void writeContent(Null) { text_ += "null"; }
  void writeContent(Date) { fault_ = "a date has no form in JSON"; }
  void writeContent(const Data&) { fault_ = "bytes have no form in JSON"; }

  void writeContent(const Number& number) {
    std::visit(
        [this, &number](const auto& value) {
          using Kind = std::remove_cvref_t<decltype(value)>;
          if constexpr (std::is_same_v<Kind, bool>) {
            text_ += value ? "true" : "false";
          } else if constexpr (std::is_same_v<Kind, double>) {
            writeDouble(value);
          } else {
            text_ += number.stringValue();
          }
        },
        number.storage());
  }

  void writeDouble(double value) {
    if (!std::isfinite(value)) {
      fault_ = "a number that is not finite has no form in JSON";
    } else if (pretty_) {
      std::array<char, 32> digits{};
      std::snprintf(digits.data(), digits.size(), "%.17g", value);
      text_ += digits.data();
    } else {
      // "-0" would read back as the whole number 0.
      text_ += value == 0 && std::signbit(value) ? "-0.0" : Number(value).stringValue();
    }
  }

  void writeContent(const std::string& string) {
    if (!isUtf8(string)) {
      fault_ = "a text is not UTF-8";
      return;
    }
    text_ += '"';
    for (auto rest = string.begin(); rest != string.end();) {
      const auto plainEnd = std::find_if(rest, string.end(), isSpecial);
      text_.append(rest, plainEnd);
      rest = plainEnd;
      if (rest != string.end()) {
        writeCharacter(*rest++);
      }
    }
    text_ += '"';
  }

  static bool isSpecial(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\' || c == '/';
  }

  void writeCharacter(char c) {
    switch (c) {
      case '"':
        text_ += "\\\"";
        break;
      case '\\':
        text_ += "\\\\";
        break;
      case '\b':
        text_ += "\\b";
        break;
      case '\f':
        text_ += "\\f";
        break;
      case '\n':
        text_ += "\\n";
        break;
      case '\r':
        text_ += "\\r";
        break;
      case '\t':
        text_ += "\\t";
        break;
      case '/':
        text_ += pretty_ ? "\\/" : "/";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          text_ += "\\u00" + hexByte(static_cast<unsigned char>(c));
        } else {
          text_ += c;
        }
    }
  }

  void writeContent(const Array& array) {
    writeContainer('[', array, ']', [this](const Value& element) { write(element); });
  }

  void writeContent(const Dictionary& dictionary) {
    writeContainer('{', dictionary, '}', [this](const Dictionary::Member& member) {
      writeContent(member.key);
      text_ += pretty_ ? " : " : ":";
      write(member.value);
    });
  }

  void writeContainer(char opening, const auto& items, char closing, const auto& writeItem) {
    text_ += opening;
    ++depth_;
    bool first = true;
    for (const auto& item : items) {
      if (!first) {
        text_ += ',';
      }
      first = false;
      breakLine();
      writeItem(item);
    }
    --depth_;
    // The phone leaves an empty line in an empty container.
    if (pretty_ && first) {
      text_ += '\n';
    }
    breakLine();
    text_ += closing;
  }

  void breakLine() {
    if (!pretty_) {
      return;
    }
    text_ += '\n';
    text_.append(2 * depth_, ' ');
  }

  bool pretty_;
  std::size_t depth_ = 0;
  std::string text_;
  std::string fault_;
};

}  // namespace

std::expected<std::string, JsonError> writeJson(const Value& value, JsonLayout layout) {
  JsonWriter writer(layout);
  writer.write(value);
  if (!writer.fault().empty()) {
    return std::unexpected(JsonError{
        "The data couldn’t be written because it isn’t in the correct format.", writer.fault()});
  }
  return writer.takeText();
}

}  // namespace quillpad
