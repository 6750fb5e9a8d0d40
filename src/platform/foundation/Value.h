// A loosely typed value: what JSON documents and property lists hold. Plain values, copied freely;
// safe to read from any thread, like the standard containers.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace quillpad {

// A point in time, to the millisecond as the channel writes it.
using Date = std::chrono::sys_time<std::chrono::milliseconds>;

// JSON's null: an object of its own, not an absence.
struct Null {
  friend bool operator==(Null, Null) = default;
};

// Bytes of a property list.
struct Data {
  std::string bytes;
  friend bool operator==(const Data&, const Data&) = default;
};

// A whole number that 64 bits do not hold: up to 38 decimal digits, after a "-" where it is
// negative.
struct WideInteger {
  std::string digits;
  friend bool operator==(const WideInteger&, const WideInteger&) = default;
};

// A number that remembers how it came: a truth value, a whole number, or a double.
class Number {
 public:
  using Storage = std::variant<bool, std::int64_t, std::uint64_t, WideInteger, double>;

  Number(bool value) : storage_(value) {}
  Number(int value) : storage_(std::int64_t{value}) {}
  Number(std::int64_t value) : storage_(value) {}
  Number(std::uint64_t value) : storage_(value) {}
  Number(WideInteger value) : storage_(std::move(value)) {}
  Number(double value) : storage_(value) {}

  const Storage& storage() const { return storage_; }

  // The value as a double, rounded to the nearest where it has more than 53 bits; a truth value is
  // 1 or 0.
  double doubleValue() const;

  // The number's text: digits for whole numbers, "1" or "0" for truth values, and for doubles the
  // shortest decimal text that reads back as the same double, with an exponent below 1e-4 and from
  // 1e16 on.
  std::string stringValue() const;

  friend bool operator==(const Number&, const Number&) = default;

 private:
  Storage storage_;
};

class Value;
using Array = std::vector<Value>;

// Keys and values in the order in which they were set. Each key occurs once.
class Dictionary {
 public:
  struct Member;

  Dictionary();
  Dictionary(std::initializer_list<Member> members);
  Dictionary(const Dictionary&);
  Dictionary(Dictionary&&) noexcept;
  Dictionary& operator=(const Dictionary&);
  Dictionary& operator=(Dictionary&&) noexcept;
  ~Dictionary();

  // The members in their order, of several with one key the first; fit for any number of them.
  static Dictionary ofMembers(std::vector<Member> members);

  // The value under the key, or nullptr. Takes time in proportion to the number of members, as the
  // objects of this system have few.
  const Value* find(std::string_view key) const;

  // The value under the key as a T, or nullptr if there is none or it is of another kind.
  template <class T>
  const T* get(std::string_view key) const;

  // Sets the key's value, in place where the key is there already.
  void set(std::string key, Value value);

  // Takes the key and its value away, if they are there.
  void remove(std::string_view key);

  std::size_t size() const;
  bool empty() const;
  const Member* begin() const;
  const Member* end() const;

  friend bool operator==(const Dictionary&, const Dictionary&);

 private:
  std::vector<Member> members_;
};

class Value {
 public:
  using Storage = std::variant<Null, Number, std::string, Date, Data, Array, Dictionary>;

  Value() = default;
  Value(const Value&);
  Value(Value&&) noexcept;
  Value& operator=(const Value&);
  Value& operator=(Value&&) noexcept;
  ~Value();

  Value(Null) {}
  Value(Number value) : storage_(std::move(value)) {}
  Value(bool value) : storage_(Number(value)) {}
  Value(int value) : storage_(Number(value)) {}
  Value(std::int64_t value) : storage_(Number(value)) {}
  Value(std::uint64_t value) : storage_(Number(value)) {}
  Value(double value) : storage_(Number(value)) {}
  Value(const char* value) : storage_(std::string(value)) {}
  Value(std::string_view value) : storage_(std::string(value)) {}
  Value(std::string value) : storage_(std::move(value)) {}
  Value(Date value) : storage_(value) {}
  Value(Data value) : storage_(std::move(value)) {}
  Value(Array value) : storage_(std::move(value)) {}
  Value(Dictionary value) : storage_(std::move(value)) {}

  // The value as a T (Null, Number, std::string, Date, Data, Array or Dictionary), or nullptr if it
  // is of another kind.
  template <class T>
  const T* as() const {
    return std::get_if<T>(&storage_);
  }

  const Storage& storage() const { return storage_; }

  friend bool operator==(const Value&, const Value&);

 private:
  Storage storage_;
};

struct Dictionary::Member {
  std::string key;
  Value value;
  friend bool operator==(const Member&, const Member&) = default;
};

template <class T>
const T* Dictionary::get(std::string_view key) const {
  const Value* value = find(key);
  return value == nullptr ? nullptr : value->as<T>();
}

}  // namespace quillpad
