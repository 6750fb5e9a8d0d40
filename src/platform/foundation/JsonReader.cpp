#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>
#include <vector>

#include "platform/foundation/Json.h"
#include "platform/foundation/NumberText.h"

namespace quillpad {
namespace {

constexpr std::size_t maxDepth = 512;
constexpr const char* unreadable =
    "The data couldn’t be read because it isn’t in the correct format.";

// Builds a Value from the parser's events: the containers that are open, innermost last, and the
// document once it is whole.
class ValueBuilder {
 public:
  using number_integer_t = nlohmann::json::number_integer_t;
  using number_unsigned_t = nlohmann::json::number_unsigned_t;
  using number_float_t = nlohmann::json::number_float_t;
  using string_t = nlohmann::json::string_t;
  using binary_t = nlohmann::json::binary_t;

  explicit ValueBuilder(std::size_t maxValues) : valuesLeft_(maxValues) {}

  bool null() { return put(Null()); }
  bool boolean(bool value) { return put(value); }
  bool number_integer(number_integer_t value) { return put(std::int64_t{value}); }
  bool number_unsigned(number_unsigned_t value) {
    return put(
        std::in_range<std::int64_t>(value) ? Value(static_cast<std::int64_t>(value))
                                           : Value(std::uint64_t{value}));
  }
  bool number_float(number_float_t value, const string_t& text) {
    // The parser takes whole numbers of more than 64 bits for fractions.
    std::optional<Number> whole = wholeNumberFromText(text);
    return put(whole ? Value(*std::move(whole)) : Value(value));
  }
  bool string(string_t& value) { return put(std::move(value)); }
  bool binary(binary_t&) { return false; }  // JSON text has none

  bool start_object(std::size_t) { return open(true); }
  bool key(string_t& value) {
    open_.back().key = std::move(value);
    return true;
  }
  bool end_object() {
    Container object = close();
    return put(Dictionary::ofMembers(std::move(object.members)));
  }
  bool start_array(std::size_t) { return open(false); }
  bool end_array() {
    Container array = close();
    return put(std::move(array.elements));
  }
  bool parse_error(std::size_t position, const std::string&, const nlohmann::json::exception&) {
    errorPosition_ = position;
    return false;
  }

  Value takeDocument() { return std::move(document_); }
  std::size_t errorPosition() const { return errorPosition_; }
  bool tooDeep() const { return tooDeep_; }
  bool tooMany() const { return tooMany_; }

 private:
  struct Container {
    bool isObject;
    std::string key;
    std::vector<Dictionary::Member> members;
    Array elements;
  };

  bool open(bool isObject) {
    tooDeep_ = open_.size() == maxDepth;
    if (tooDeep_) {
      return false;
    }
    open_.push_back({isObject, {}, {}, {}});
    return true;
  }

  Container close() {
    Container closed = std::move(open_.back());
    open_.pop_back();
    return closed;
  }

  bool put(Value value) {
    tooMany_ = valuesLeft_ == 0;
    if (tooMany_) {
      return false;
    }
    --valuesLeft_;
    if (open_.empty()) {
      document_ = std::move(value);
    } else if (open_.back().isObject) {
      open_.back().members.push_back({std::move(open_.back().key), std::move(value)});
    } else {
      open_.back().elements.push_back(std::move(value));
    }
    return true;
  }

  std::size_t valuesLeft_;
  std::vector<Container> open_;
  Value document_;
  std::size_t errorPosition_ = 0;
  bool tooDeep_ = false;
  bool tooMany_ = false;
};

// Without any of the text itself, which may be private.
std::unexpected<JsonError> refusedAt(std::string_view text, std::size_t position) {
  const std::string_view before = text.substr(0, position);
  const auto line = static_cast<std::size_t>(1 + std::ranges::count(before, '\n'));
  const std::size_t column = std::max<std::size_t>(1, before.size() - (before.rfind('\n') + 1));
  return std::unexpected(JsonError{
      unreadable,
      "invalid JSON at line " + std::to_string(line) + ", column " + std::to_string(column),
      line});
}

std::unexpected<JsonError> refused(std::string reason) {
  return std::unexpected(JsonError{unreadable, std::move(reason), 0});
}

}  // namespace

std::expected<Value, JsonError> readJson(
    std::string_view text, JsonFragments fragments, std::size_t maxValues) {
  // The parser takes a zero byte for the end of the text.
  const std::size_t zero = text.find('\0');
  if (zero != std::string_view::npos) {
    return refusedAt(text, zero + 1);
  }

  ValueBuilder builder(maxValues);
  if (!nlohmann::json::sax_parse(text.begin(), text.end(), &builder)) {
    if (builder.tooDeep()) {
      return refused(
          "more than " + std::to_string(maxDepth) + " arrays and objects inside one another");
    }
    if (builder.tooMany()) {
      return refused("more than " + std::to_string(maxValues) + " values");
    }
    return refusedAt(text, builder.errorPosition());
  }
  Value document = builder.takeDocument();
  const bool isContainer = document.as<Array>() != nullptr || document.as<Dictionary>() != nullptr;
  if (!isContainer && fragments == JsonFragments::refused) {
    return refused("the outermost value is neither an array nor an object");
  }
  return document;
}

}  // namespace quillpad
