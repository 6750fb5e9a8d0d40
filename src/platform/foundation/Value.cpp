#include "platform/foundation/Value.h"

#include <algorithm>

namespace foundation {

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

std::size_t Dictionary::size() const { return members_.size(); }
bool Dictionary::empty() const { return members_.empty(); }
const Dictionary::Member* Dictionary::begin() const { return members_.data(); }
const Dictionary::Member* Dictionary::end() const { return members_.data() + members_.size(); }

bool operator==(const Dictionary& left, const Dictionary& right) {
  return left.size() == right.size() &&
         std::ranges::all_of(left, [&](const Dictionary::Member& member) {
           const Value* other = right.find(member.key);
           return other != nullptr && *other == member.value;
         });
}

}  // namespace foundation
