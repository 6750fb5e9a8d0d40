// The translated texts of a bundle: the property list Localizable.strings in each of its
// <language>.lproj folders. A language's texts are read at their first use and kept. Callable from
// any thread.
#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Value.h"

namespace quillpad {

class LocalizedStrings {
 public:
  // Those of the main bundle.
  static const LocalizedStrings& main();

  explicit LocalizedStrings(std::filesystem::path folder);

  // The languages that there are folders of, in alphabetical order.
  const std::vector<std::string>& languages() const { return languages_; }

  // The text under the key in the first of the locale's languages that has one, else in English,
  // else the key itself.
  std::string text(std::string_view key, const std::string& locale) const;

 private:
  // The texts of one of the languages, empty where there is no property list of them.
  const Dictionary& textsOf(const std::string& language) const;

  std::filesystem::path folder_;
  std::vector<std::string> languages_;
  mutable std::mutex reading_;
  mutable std::map<std::string, Dictionary> texts_;  // by language; never changed once read
};

}  // namespace quillpad
