#include "platform/settings/PropertyList.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <pugixml.hpp>

#include "platform/foundation/Base64.h"
#include "platform/foundation/Iso8601.h"
#include "platform/foundation/NumberText.h"
#include "platform/foundation/Utf8.h"

namespace quillpad {
namespace {

constexpr int maxDepth = 512;

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

std::optional<Number> hexadecimalOf(std::string_view digits) {
  std::uint64_t value = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  if (error != std::errc() || end != digits.data() + digits.size()) {
    return std::nullopt;
  }
  return std::in_range<std::int64_t>(value) ? Number(static_cast<std::int64_t>(value))
                                            : Number(value);
}

std::optional<Value> numberOf(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
  }
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) {
    text.remove_prefix(2);
  }
  if (const auto value = hexadecimal ? hexadecimalOf(text) : wholeNumberFromText(text)) {
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
    if (depth == maxDepth) {
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

// Why a property list cannot hold the text; empty where it can.
std::string_view errorIn(std::string_view text) {
  if (!isUtf8(text)) {
    return "it holds text that is not UTF-8";
  }
  const auto isControl = [](char c) {
    return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
  };
  if (std::ranges::any_of(text, isControl)) {
    return "it holds a control character, which a settings file cannot keep";
  }
  if (text.contains("\uFFFE") || text.contains("\uFFFF")) {
    return "it holds a character that a settings file cannot keep";
  }
  return {};
}

// Appends a value's element to its parent.
struct ElementWriter {
  pugi::xml_node parent;
  std::string& error;  // why the value is no property list; empty where it is one

  void write(const Value& value) { std::visit(*this, value.storage()); }

  void operator()(Null) { error = "it holds a null, which a settings file cannot keep"; }
  void operator()(const std::string& text) { append("string", text); }
  void operator()(const Data& data) { append("data", base64(data.bytes)); }

  void operator()(Date date) {
    const std::string text = iso8601(date);
    append("date", text.substr(0, text.find('.')) + "Z");
  }

  void operator()(const Number& number) {
    if (const bool* truth = std::get_if<bool>(&number.storage())) {
      parent.append_child(*truth ? "true" : "false");
    } else {
      const bool real = std::holds_alternative<double>(number.storage());
      append(real ? "real" : "integer", number.stringValue());
    }
  }

  void operator()(const Array& array) {
    ElementWriter elements{parent.append_child("array"), error};
    for (const Value& element : array) {
      elements.write(element);
    }
  }

  void operator()(const Dictionary& dictionary) {
    ElementWriter members{parent.append_child("dict"), error};
    for (const Dictionary::Member& member : dictionary) {
      members.append("key", member.key);
      members.write(member.value);
    }
  }

  void append(const char* kind, const std::string& text) {
    if (const std::string_view textError = errorIn(text); !textError.empty()) {
      error = textError;
    }
    parent.append_child(kind).text().set(text.c_str());
  }
};

// Collects a document's text. A carriage return, which the library leaves bare, would be read as a
// line feed.
struct TextWriter : pugi::xml_writer {
  void write(const void* data, std::size_t size) override {
    for (const char c : std::string_view(static_cast<const char*>(data), size)) {
      c == '\r' ? text += "&#13;" : text += c;
    }
  }

  std::string text;
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
  pugi::xml_document document;
  pugi::xml_node declaration = document.append_child(pugi::node_declaration);
  declaration.append_attribute("version") = "1.0";
  declaration.append_attribute("encoding") = "UTF-8";
  pugi::xml_node list = document.append_child("plist");
  list.append_attribute("version") = "1.0";

  std::string error;
  ElementWriter{list, error}.write(value);
  if (!error.empty()) {
    return std::unexpected(error);
  }
  TextWriter writer;
  document.save(writer);
  return writer.text;
}

}  // namespace quillpad
