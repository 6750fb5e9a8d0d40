// Reads a loosely typed value as what it should be. Steps lead down to members and elements; reads
// take what is there. The first thing that is not as asked is kept together with its place
// ("font.size: not a number"); from then on all steps and reads yield empty values, so that only
// the end needs a check:
//
//   const Decoder font(value, "font");
//   return font.result(Font{.size = font["size"].number(), .name = font["name"].text()});
//
// Copies are cheap and share the error. For one thread; the value must outlive its decoders.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/foundation/Named.h"
#include "platform/foundation/Value.h"

namespace quillpad {

class Decoder {
 public:
  // Errors name places from `name` on, or from the first member where it is empty.
  explicit Decoder(const Value& value, std::string name = {});

  // The member under the key of an object; it is an error where there is none.
  Decoder operator[](std::string_view key) const;

  // The member under the key of an object, or nothing where there is none.
  std::optional<Decoder> find(std::string_view key) const;

  // The elements of an array; more than `max` of them are an error.
  std::vector<Decoder> elements(std::size_t max = std::numeric_limits<std::size_t>::max()) const;

  // The members of an object with their keys, in their order.
  std::vector<std::pair<std::string_view, Decoder>> members() const;

  const std::string& text() const;
  bool boolean() const;
  double number() const;
  // A moment as "2026-03-07T09:05:03.250Z".
  Date date() const;

  // A number without a fraction, in the given range.
  template <std::integral T>
  T whole(T min = std::numeric_limits<T>::min(), T max = std::numeric_limits<T>::max()) const {
    return static_cast<T>(wholeBetween(clamped(min), clamped(max)));
  }

  // The value of a text among those that the table names (see Named.h); its first one on failure.
  template <class Table>
  const auto& oneOf(const Table& table) const {
    const auto* value = valueNamed(table, text());
    if (value == nullptr) {
      std::string names;
      for (const auto& each : table) {
        names.append(names.empty() ? "\"" : ", \"").append(each.name).append("\"");
      }
      fail("not one of " + names);
    }
    return value == nullptr ? std::ranges::begin(table)->value : *value;
  }

  // What is here, of any type; null on failure.
  const Value& value() const;

  // Notes an error at this place, unless there was one before.
  void fail(std::string_view what) const;

  // The first error of all decoders of the same value; empty where there is none.
  const std::string& error() const { return shared_->error; }

  // What was decoded, or the first error.
  template <class T>
  std::expected<T, std::string> result(T decoded) const {
    if (!error().empty()) {
      return std::unexpected(error());
    }
    return decoded;
  }

 private:
  struct Shared {
    const Value& root;
    std::string name;
    std::string error;
  };

  Decoder(const Value* value, std::shared_ptr<Shared> shared);
  template <class T>
  const T* as(std::string_view otherwise) const;
  std::int64_t wholeBetween(std::int64_t min, std::int64_t max) const;

  template <std::integral T>
  static std::int64_t clamped(T value) {
    return std::in_range<std::int64_t>(value) ? static_cast<std::int64_t>(value)
                                              : std::numeric_limits<std::int64_t>::max();
  }

  const Value* value_;  // null for what is missing, or comes after an error
  std::shared_ptr<Shared> shared_;
};

}  // namespace quillpad
