// A settings store that applications of one group share: an XML property list, read from its file
// each time it is opened. A value that belongs to one thread; any number may be open at once, in
// any processes.
#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/Value.h"

namespace quillpad {

// A store may hold this many bytes.
inline constexpr std::size_t maxSettingsBytes = std::size_t{1} << 20;

// Why a store cannot be opened. A damaged one is cut off, not an XML property list, or of another
// shape than a dictionary.
enum class SettingsError { absent, unreadable, tooLarge, damaged };

// Why, and what to do, in two clauses for a person.
std::string describe(SettingsError error);

class UserDefaults {
 public:
  // The store of an app group as it is now.
  static std::expected<UserDefaults, SettingsError> open(std::string_view suiteName);

  // Where the store of an app group lies: below XDG_DATA_HOME or HOME; empty where neither is set.
  static std::filesystem::path path(std::string_view suiteName);

  // The object under the key with its own kind, nothing converted; or nothing.
  std::optional<Value> object(std::string_view key) const;

  const Dictionary& objects() const { return objects_; }

 private:
  explicit UserDefaults(Dictionary objects) : objects_(std::move(objects)) {}
  Dictionary objects_;
};

}  // namespace quillpad
