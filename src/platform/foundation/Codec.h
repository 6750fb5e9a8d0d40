// How C++ values are written as loosely typed ones and read back, declared once for both ways. A
// struct lists its members, an enumeration the names of its values:
//
//   template <>
//   constexpr std::tuple fieldsOf<Font>{
//       Field{"size", &Font::size}, Field{"weight", &Font::weight, Presence::optional}};
//   template <>
//   constexpr std::array namesOf<Weight>{Named{"regular", Weight::regular}};
//
//   const Value value = encode(font);
//   const auto font = decode<Font>(decoder);
//
// To be included by .cpp files alone, as it unfolds into a good deal of code.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <variant>
#include <vector>

#include "platform/foundation/Decoder.h"
#include "platform/foundation/Iso8601.h"
#include "platform/foundation/Named.h"
#include "platform/foundation/Value.h"

namespace quillpad {

// A tuple of fields for a struct that is an object, or a pointer to the one member that stands for
// the struct.
template <class T>
inline constexpr auto fieldsOf = nullptr;

// A table of Named for an enumeration.
template <class T>
inline constexpr auto namesOf = nullptr;

// The two ways of a type: `Value encode(const T&)` and `T decode(const Decoder&)`.
template <class T>
struct Codec;

template <class T>
Value encode(const T& value) {
  return Codec<T>::encode(value);
}

template <class T>
T decode(const Decoder& d) {
  return Codec<T>::decode(d);
}

// Whether a member of an object has to be there. required: yes. defaulted: it is always written,
// but may be absent. optional: it is not written where it is empty, zero or false. What is absent
// leaves the struct's member as it was. A std::optional is always optional.
enum class Presence { required, defaulted, optional };

namespace detail {

template <class T>
struct PresentType {
  using Type = T;
};
template <class T>
struct PresentType<std::optional<T>> {
  using Type = T;
};

}  // namespace detail

// A member under its name; a codec of its own is for one that is not written as its type is.
template <class Owner, class Member, class C = Codec<typename detail::PresentType<Member>::Type>>
struct Field {
  std::string_view name;
  Member Owner::* member;
  Presence presence = Presence::required;

  static constexpr bool isOptional =
      !std::same_as<Member, typename detail::PresentType<Member>::Type>;

  void encodeInto(Dictionary& object, const Owner& owner) const {
    const Member& value = owner.*member;
    if constexpr (isOptional) {
      if (value) {
        object.set(std::string(name), C::encode(*value));
      }
    } else {
      if (presence != Presence::optional || !isEmpty(value)) {
        object.set(std::string(name), C::encode(value));
      }
    }
  }

  static bool isEmpty(const Member& value) {
    if constexpr (requires { value.empty(); }) {
      return value.empty();
    } else if constexpr (std::is_arithmetic_v<Member>) {
      return value == Member{};
    } else {
      return false;
    }
  }

  void decodeFrom(const Decoder& object, Owner& owner) const {
    if (!isOptional && presence == Presence::required) {
      owner.*member = C::decode(object[name]);
    } else if (const auto present = object.find(name)) {
      owner.*member = C::decode(*present);
    }
  }
};

template <class Owner, class Member>
Field(std::string_view, Member Owner::*) -> Field<Owner, Member>;
template <class Owner, class Member>
Field(std::string_view, Member Owner::*, Presence) -> Field<Owner, Member>;

template <class C, class Owner, class Member>
constexpr Field<Owner, Member, C> fieldAs(std::string_view name, Member Owner::* member) {
  return {name, member};
}

// The members of a struct, put into an object that may hold others, or taken from it.
template <class T>
void encodeMembers(Dictionary& object, const T& value) {
  std::apply([&](const auto&... fields) { (fields.encodeInto(object, value), ...); }, fieldsOf<T>);
}

template <class T>
void decodeMembers(const Decoder& object, T& value) {
  std::apply([&](const auto&... fields) { (fields.decodeFrom(object, value), ...); }, fieldsOf<T>);
}

// Structs.
template <class T>
struct Codec {
  static constexpr bool isOneMember =
      std::is_member_object_pointer_v<std::remove_const_t<decltype(fieldsOf<T>)>>;

  static Value encode(const T& value) {
    if constexpr (isOneMember) {
      return quillpad::encode(value.*fieldsOf<T>);
    } else {
      Dictionary object;
      encodeMembers(object, value);
      return object;
    }
  }

  static T decode(const Decoder& d) {
    T value{};
    decodeInto(d, value);
    return value;
  }

  static void decodeInto(const Decoder& d, T& value) {
    if constexpr (isOneMember) {
      auto& member = value.*fieldsOf<T>;
      member = quillpad::decode<std::remove_reference_t<decltype(member)>>(d);
    } else {
      decodeMembers(d, value);
    }
  }
};

template <class T>
  requires std::is_enum_v<T>
struct Codec<T> {
  static Value encode(T value) { return nameOf(namesOf<T>, value); }
  static T decode(const Decoder& d) { return d.oneOf(namesOf<T>); }
};

template <std::integral T>
struct Codec<T> {
  static Value encode(T value) {
    if constexpr (std::unsigned_integral<T>) {
      return std::uint64_t{value};
    } else {
      return std::int64_t{value};
    }
  }
  static T decode(const Decoder& d) { return d.whole<T>(); }
};

template <>
struct Codec<bool> {
  static Value encode(bool value) { return value; }
  static bool decode(const Decoder& d) { return d.boolean(); }
};

template <>
struct Codec<std::string> {
  static Value encode(const std::string& value) { return value; }
  static std::string decode(const Decoder& d) { return d.text(); }
};

template <>
struct Codec<Date> {
  static Value encode(Date value) { return iso8601(value); }
  static Date decode(const Decoder& d) { return d.date(); }
};

template <>
struct Codec<Value> {
  static Value encode(const Value& value) { return value; }
  static Value decode(const Decoder& d) { return d.value(); }
};

template <class T>
struct Codec<std::vector<T>> {
  static Value encode(const std::vector<T>& values) {
    Array array;
    array.reserve(values.size());
    for (const T& value : values) {
      array.push_back(Codec<T>::encode(value));
    }
    return array;
  }
  static std::vector<T> decode(const Decoder& d) {
    std::vector<T> values;
    for (const Decoder& element : d.elements()) {
      values.push_back(Codec<T>::decode(element));
    }
    return values;
  }
};

template <class T, class Less>
struct Codec<std::map<std::string, T, Less>> {
  static Value encode(const std::map<std::string, T, Less>& values) {
    Dictionary object;
    for (const auto& [key, value] : values) {
      object.set(key, Codec<T>::encode(value));
    }
    return object;
  }
  static std::map<std::string, T, Less> decode(const Decoder& d) {
    std::map<std::string, T, Less> values;
    for (const auto& [key, value] : d.members()) {
      values.emplace(key, Codec<T>::decode(value));
    }
    return values;
  }
};

// Variants by prototypes: a table of Named with every alternative in its initial state.

// The name of the first prototype of the same alternative.
template <class Table, class Variant>
std::string_view alternativeName(const Table& prototypes, const Variant& variant) {
  return std::ranges::find_if(
             prototypes, [&](const auto& each) { return each.value.index() == variant.index(); })
      ->name;
}

// The prototype with what is decoded put into it.
template <class Variant>
Variant decodeAlternative(const Decoder& d, Variant prototype) {
  std::visit([&]<class T>(T& alternative) { Codec<T>::decodeInto(d, alternative); }, prototype);
  return prototype;
}

}  // namespace quillpad
