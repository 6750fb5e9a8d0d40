#include "platform/foundation/Value.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <tuple>

#include "platform/foundation/Overloaded.h"

namespace quillpad {
namespace {

std::string textOf(double value) {
  if (std::isnan(value)) {
    return "nan";
  }
  if (std::isinf(value)) {
    return value < 0 ? "-inf" : "inf";
  }
  char buffer[32];
  const auto written =
      std::to_chars(std::begin(buffer), std::end(buffer), value, std::chars_format::scientific);
  const std::string_view scientific(buffer, written.ptr);
  const int exponent = std::atoi(std::string(scientific.substr(scientific.find('e') + 1)).c_str());
  if (exponent < -4 || exponent >= 16) {
    return std::string(scientific);
  }
  const auto plain =
      std::to_chars(std::begin(buffer), std::end(buffer), value, std::chars_format::fixed);
  return {buffer, plain.ptr};
}

}  // namespace

double Number::doubleValue() const {
  return std::visit(
      Overloaded{
          [](const WideInteger& value) {
            double rounded = 0;
            std::from_chars(
                value.digits.data(), value.digits.data() + value.digits.size(), rounded);
            return rounded;
          },
          [](auto value) { return static_cast<double>(value); }},
      storage_);
}

std::string Number::stringValue() const {
  return std::visit(
      Overloaded{
          [](double value) { return textOf(value); },
          [](const WideInteger& value) { return value.digits; },
          [](auto value) { return std::to_string(value); }},
      storage_);
}

Dictionary::Dictionary() = default;
Dictionary::Dictionary(const Dictionary&) = default;
Dictionary::Dictionary(Dictionary&&) noexcept = default;
Dictionary& Dictionary::operator=(const Dictionary&) = default;
Dictionary& Dictionary::operator=(Dictionary&&) noexcept = default;
Dictionary::~Dictionary() = default;

Dictionary::Dictionary(std::initializer_list<Member> members) {
  for (const Member& member : members) {
    set(member.key, member.value);
  }
}

Dictionary Dictionary::ofMembers(std::vector<Member> members) {
  std::vector<const Member*> byKey;
  byKey.reserve(members.size());
  for (const Member& member : members) {
    byKey.push_back(&member);
  }
  std::ranges::sort(byKey, [](const Member* left, const Member* right) {
    return std::tie(left->key, left) < std::tie(right->key, right);
  });
  std::vector<bool> repeated(members.size(), false);
  bool anyRepeated = false;
  for (std::size_t i = 1; i < byKey.size(); ++i) {
    if (byKey[i]->key == byKey[i - 1]->key) {
      repeated[static_cast<std::size_t>(byKey[i] - members.data())] = true;
      anyRepeated = true;
    }
  }
  Dictionary dictionary;
  if (!anyRepeated) {
    dictionary.members_ = std::move(members);
    return dictionary;
  }
  for (std::size_t i = 0; i < members.size(); ++i) {
    if (!repeated[i]) {
      dictionary.members_.push_back(std::move(members[i]));
    }
  }
  return dictionary;
}

const Value* Dictionary::find(std::string_view key) const {
  const auto member = std::ranges::find(members_, key, &Member::key);
  return member == members_.end() ? nullptr : &member->value;
}

void Dictionary::set(std::string key, Value value) {
  const auto member = std::ranges::find(members_, key, &Member::key);
  if (member == members_.end()) {
    members_.push_back({std::move(key), std::move(value)});
  } else {
    member->value = std::move(value);
  }
}

void Dictionary::remove(std::string_view key) {
  std::erase_if(members_, [&](const Member& member) { return member.key == key; });
}

std::size_t Dictionary::size() const { return members_.size(); }
bool Dictionary::empty() const { return members_.empty(); }
const Dictionary::Member* Dictionary::begin() const { return members_.data(); }
const Dictionary::Member* Dictionary::end() const { return members_.data() + members_.size(); }

Value::Value(const Value&) = default;
Value::Value(Value&&) noexcept = default;
Value& Value::operator=(const Value&) = default;
Value& Value::operator=(Value&&) noexcept = default;
Value::~Value() = default;

bool operator==(const Value& left, const Value& right) { return left.storage_ == right.storage_; }

bool operator==(const Dictionary& left, const Dictionary& right) {
  return left.size() == right.size() &&
         std::ranges::all_of(left, [&](const Dictionary::Member& member) {
           const Value* other = right.find(member.key);
           return other != nullptr && *other == member.value;
         });
}

}  // namespace quillpad
