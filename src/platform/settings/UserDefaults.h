// A settings store that applications of one group share: an XML property list, read from its file
// each time it is opened. A value that belongs to one thread; any number may be open at once, in
// any processes.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "platform/foundation/Value.h"

namespace quillpad {

class UserDefaults {
 public:
  // The store of an app group as it is now. Nothing if there is none or it cannot be read: absent,
  // unreadable, over 1 MiB, cut off, not an XML property list, or of another shape than a
  // dictionary.
  static std::optional<UserDefaults> open(std::string_view suiteName);

  // Where the store of an app group lies: below XDG_DATA_HOME or HOME.
  static std::filesystem::path path(std::string_view suiteName);

  // The object under the key with its own kind, nothing converted; or nothing.
  std::optional<Value> object(std::string_view key) const;

 private:
  explicit UserDefaults(Dictionary objects) : objects_(std::move(objects)) {}
  Dictionary objects_;
};

}  // namespace quillpad
