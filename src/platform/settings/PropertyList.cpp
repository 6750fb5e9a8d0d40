#include "platform/settings/PropertyList.h"

#include <charconv>
#include <cstdint>
#include <pugixml.hpp>

#include "platform/foundation/Base64.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/NumberText.h"
#include "platform/foundation/Utf8.h"

namespace quillpad {
namespace {

constexpr int deepestNesting = 512;

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view whiteSpace = " \t\r\n";
  const std::size_t start = text.find_first_not_of(whiteSpace);
  if (start == std::string_view::npos) {
    return {};
  }
  return text.substr(start, text.find_last_not_of(whiteSpace) - start + 1);
}

bool isText(const pugi::xml_node& node) {
  return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

// The text of an element that holds nothing else.
std::optional<std::string> textOf(const pugi::xml_node& element) {
  std::string text;
  for (const pugi::xml_node& child : element.children()) {
    if (!isText(child)) {
      return std::nullopt;
    }
    text += child.value();
  }
  if (!isUtf8(text)) {
    return std::nullopt;
  }
  return text;
}

template <class Integer>
std::optional<Integer> integerOf(std::string_view digits, int base) {
  Integer value{};
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
  if (error != std::errc() || end != digits.data() + digits.size()) {
    return std::nullopt;
  }
  return value;
}

std::optional<Value> numberOf(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
  }
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) {
    text.remove_prefix(2);
  }
  const int base = hexadecimal ? 16 : 10;
  if (const auto value = integerOf<std::int64_t>(text, base)) {
    return Value(*value);
  }
  if (const auto value = integerOf<std::uint64_t>(text, base)) {
    return Value(*value);
  }
  return std::nullopt;
}

// Property lists write whole seconds: "2026-03-07T09:05:03Z".
std::optional<Value> dateOf(std::string_view text) {
  if (!text.ends_with('Z')) {
    return std::nullopt;
  }
  text.remove_suffix(1);
  const std::optional<Date> date = dateFromIso8601(std::string(text) + ".000Z");
  if (!date) {
    return std::nullopt;
  }
  return Value(*date);
}

std::optional<Value> scalarOf(std::string_view kind, const std::string& text) {
  if (kind == "string") {
    return Value(text);
  }
  if (kind == "true") {
    return Value(true);
  }
  if (kind == "false") {
    return Value(false);
  }
  if (kind == "integer") {
    return numberOf(trimmed(text));
  }
  if (kind == "date") {
    return dateOf(trimmed(text));
  }
  if (kind == "real") {
    const std::optional<double> value = doubleFromText(trimmed(text));
    return value ? std::optional(Value(*value)) : std::nullopt;
  }
  if (kind == "data") {
    std::optional<std::string> bytes = bytesFromBase64(text);
    return bytes ? std::optional(Value(Data{std::move(*bytes)})) : std::nullopt;
  }
  return std::nullopt;
}

std::optional<Value> valueOf(const pugi::xml_node& element, int depth);

std::optional<Value> arrayOf(const pugi::xml_node& element, int depth) {
  Array array;
  for (const pugi::xml_node& child : element.children()) {
    if (isText(child)) {
      continue;
    }
    std::optional<Value> value = valueOf(child, depth);
    if (!value) {
      return std::nullopt;
    }
    array.push_back(std::move(*value));
  }
  return Value(std::move(array));
}

std::optional<Value> dictionaryOf(const pugi::xml_node& element, int depth) {
  std::vector<Dictionary::Member> members;
  std::optional<std::string> key;
  for (const pugi::xml_node& child : element.children()) {
    if (isText(child)) {
      continue;
    }
    const bool isKey = std::string_view(child.name()) == "key";
    if (isKey == key.has_value()) {
      return std::nullopt;
    }
    if (isKey) {
      key = textOf(child);
      if (!key) {
        return std::nullopt;
      }
      continue;
    }
    std::optional<Value> value = valueOf(child, depth);
    if (!value) {
      return std::nullopt;
    }
    members.push_back({std::move(*key), std::move(*value)});
    key.reset();
  }
  if (key) {
    return std::nullopt;
  }
  return Value(Dictionary::ofMembers(std::move(members)));
}

std::optional<Value> valueOf(const pugi::xml_node& element, int depth) {
  const std::string_view kind = element.name();
  if (kind == "dict" || kind == "array") {
    if (depth == deepestNesting) {
      return std::nullopt;
    }
    return kind == "dict" ? dictionaryOf(element, depth + 1) : arrayOf(element, depth + 1);
  }
  const std::optional<std::string> text = textOf(element);
  if (!text) {
    return std::nullopt;
  }
  return scalarOf(kind, *text);
}

constexpr std::string_view head =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<plist version=\"1.0\">\n";

class PropertyListWriter {
 public:
  void write(const Value& value) {
    std::visit([&](const auto& content) { writeContent(content); }, value.storage());
  }

  // Why the value is no property list; empty where it is one.
  const std::string& fault() const { return fault_; }
  std::string takeText() { return std::move(text_); }

 private:
  void writeContent(Null) { fault_ = "it holds a null, which a settings file cannot keep"; }
  void writeContent(const std::string& text) { writeText("string", text); }
  void writeContent(const Data& data) { writeText("data", base64(data.bytes)); }

  void writeContent(Date date) {
    const std::string text = iso8601(date);
    writeText("date", text.substr(0, text.find('.')) + "Z");
  }

  void writeContent(const Number& number) {
    if (const bool* truth = std::get_if<bool>(&number.storage())) {
      writeLine(*truth ? "<true/>" : "<false/>");
    } else if (std::holds_alternative<double>(number.storage())) {
      writeText("real", number.stringValue());
    } else {
      writeText("integer", number.stringValue());
    }
  }

  void writeContent(const Array& array) {
    writeLine("<array>");
    ++depth_;
    for (const Value& element : array) {
      write(element);
    }
    --depth_;
    writeLine("</array>");
  }

  void writeContent(const Dictionary& dictionary) {
    writeLine("<dict>");
    ++depth_;
    for (const Dictionary::Member& member : dictionary) {
      writeText("key", member.key);
      write(member.value);
    }
    --depth_;
    writeLine("</dict>");
  }

  void writeText(std::string_view kind, std::string_view text) {
    if (!isUtf8(text)) {
      fault_ = "it holds text that is not UTF-8";
    }
    if (text.contains("\xEF\xBF\xBE") || text.contains("\xEF\xBF\xBF")) {
      fault_ = "it holds a character that a settings file cannot keep";
    }
    std::string line = "<" + std::string(kind) + ">";
    for (const char c : text) {
      appendEscaped(line, c);
    }
    writeLine(line + "</" + std::string(kind) + ">");
  }

  void appendEscaped(std::string& line, char c) {
    switch (c) {
      case '&':
        line += "&amp;";
        break;
      case '<':
        line += "&lt;";
        break;
      case '>':
        line += "&gt;";
        break;
      case '\r':
        line += "&#13;";
        break;  // a bare one would be read as a line feed
      case '\t':
      case '\n':
        line += c;
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          fault_ = "it holds a control character, which a settings file cannot keep";
        }
        line += c;
    }
  }

  void writeLine(std::string_view line) {
    text_.append(depth_, '\t');
    text_ += line;
    text_ += '\n';
  }

  std::size_t depth_ = 0;
  std::string text_{head};
  std::string fault_;
};

}  // namespace

std::optional<Value> readPropertyList(std::string_view text) {
  pugi::xml_document document;
  // Without the flag a text of blanks alone would be lost.
  constexpr unsigned flags = pugi::parse_default | pugi::parse_ws_pcdata_single;
  if (!document.load_buffer(text.data(), text.size(), flags)) {
    return std::nullopt;
  }
  const pugi::xml_node root = document.document_element();
  if (std::string_view(root.name()) != "plist") {
    return std::nullopt;
  }
  const std::optional<Value> contents = arrayOf(root, 0);
  if (!contents || contents->as<Array>()->size() != 1) {
    return std::nullopt;
  }
  return contents->as<Array>()->front();
}

std::expected<std::string, std::string> writePropertyList(const Value& value) {
  PropertyListWriter writer;
  writer.write(value);
  if (!writer.fault().empty()) {
    return std::unexpected(writer.fault());
  }
  return writer.takeText() + "</plist>\n";
}

}  // namespace quillpad
