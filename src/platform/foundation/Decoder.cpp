#include "platform/foundation/Decoder.h"

#include "platform/foundation/Iso8601.h"

namespace quillpad {
namespace {

// The way down from a value to the very object that is searched, or nothing if it is not in there.
// Only errors need it, so it is found afterwards instead of being kept along the way.
std::optional<std::string> pathTo(const Value* target, const Value& from) {
  if (&from == target) {
    return "";
  }
  if (const auto* array = from.as<Array>()) {
    for (std::size_t i = 0; i < array->size(); ++i) {
      if (const auto rest = pathTo(target, (*array)[i])) {
        return "[" + std::to_string(i) + "]" + *rest;
      }
    }
  } else if (const auto* dictionary = from.as<Dictionary>()) {
    for (const auto& [key, value] : *dictionary) {
      if (const auto rest = pathTo(target, value)) {
        return "." + key + *rest;
      }
    }
  }
  return std::nullopt;
}

}  // namespace

Decoder::Decoder(const Value& value, std::string name)
    : value_(&value), shared_(std::make_shared<Shared>(value, std::move(name))) {}

Decoder::Decoder(const Value* value, std::shared_ptr<Shared> shared)
    : value_(value), shared_(std::move(shared)) {}

void Decoder::fail(std::string_view what) const {
  if (value_ == nullptr || !error().empty()) {
    return;
  }
  std::string place = shared_->name + pathTo(value_, shared_->root).value_or("");
  if (place.starts_with('.')) {
    place.erase(0, 1);
  }
  shared_->error = place.empty() ? std::string(what) : place + ": " + std::string(what);
}

// The value as a T, or nullptr; then the error is noted.
template <class T>
const T* Decoder::as(std::string_view otherwise) const {
  if (value_ == nullptr || !error().empty()) {
    return nullptr;
  }
  const T* typed = value_->as<T>();
  if (typed == nullptr) {
    fail(otherwise);
  }
  return typed;
}

std::optional<Decoder> Decoder::find(std::string_view key) const {
  const auto* dictionary = as<Dictionary>("not an object");
  const Value* member = dictionary == nullptr ? nullptr : dictionary->find(key);
  return member == nullptr ? std::nullopt : std::optional(Decoder(member, shared_));
}

Decoder Decoder::operator[](std::string_view key) const {
  if (auto member = find(key)) {
    return *std::move(member);
  }
  fail("no \"" + std::string(key) + "\"");
  return {nullptr, shared_};
}

std::vector<Decoder> Decoder::elements(std::size_t max) const {
  const auto* array = as<Array>("not an array");
  if (array == nullptr) {
    return {};
  }
  if (array->size() > max) {
    fail("more than " + std::to_string(max) + " elements");
    return {};
  }
  std::vector<Decoder> decoders;
  decoders.reserve(array->size());
  for (const Value& element : *array) {
    decoders.push_back(Decoder(&element, shared_));
  }
  return decoders;
}

std::vector<std::pair<std::string_view, Decoder>> Decoder::members() const {
  std::vector<std::pair<std::string_view, Decoder>> decoders;
  if (const auto* dictionary = as<Dictionary>("not an object")) {
    for (const auto& [key, value] : *dictionary) {
      decoders.emplace_back(key, Decoder(&value, shared_));
    }
  }
  return decoders;
}

const std::string& Decoder::text() const {
  static const std::string nothing;
  const auto* text = as<std::string>("not a string");
  return text == nullptr ? nothing : *text;
}

bool Decoder::boolean() const {
  constexpr std::string_view otherwise = "not true or false";
  const auto* number = as<Number>(otherwise);
  const bool* truth = number == nullptr ? nullptr : std::get_if<bool>(&number->storage());
  if (truth == nullptr) {
    fail(otherwise);
  }
  return truth != nullptr && *truth;
}

double Decoder::number() const {
  constexpr std::string_view otherwise = "not a number";
  const auto* number = as<Number>(otherwise);
  if (number == nullptr || std::holds_alternative<bool>(number->storage())) {
    fail(otherwise);
    return 0;
  }
  return number->doubleValue();
}

Date Decoder::date() const {
  const auto date = dateFromIso8601(text());
  if (!date) {
    fail("not a date like 2026-03-07T09:05:03.250Z");
  }
  return date.value_or(Date());
}

std::int64_t Decoder::wholeBetween(std::int64_t min, std::int64_t max) const {
  constexpr std::string_view otherwise = "not a whole number";
  const auto* number = as<Number>(otherwise);
  const auto* whole = number == nullptr ? nullptr : std::get_if<std::int64_t>(&number->storage());
  if (whole == nullptr) {
    fail(otherwise);
    return 0;
  }
  if (*whole < min || *whole > max) {
    fail("not from " + std::to_string(min) + " to " + std::to_string(max));
    return 0;
  }
  return *whole;
}

const Value& Decoder::value() const {
  static const Value nothing;
  return value_ == nullptr || !error().empty() ? nothing : *value_;
}

}  // namespace quillpad
