#include "platform/locale/LocalizedStrings.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <system_error>

#include "platform/foundation/Bundle.h"
#include "platform/foundation/Locale.h"
#include "platform/os/WholeFile.h"
#include "platform/settings/PropertyList.h"

namespace quillpad {
namespace {

// Whose texts are shown where the locale's languages have none.
constexpr const char* developmentLanguage = "en";

constexpr std::size_t maxFileBytes = std::size_t{1} << 20;

std::vector<std::string> languagesIn(const std::filesystem::path& folder) {
  std::vector<std::string> languages;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->path().extension() == ".lproj") {
      languages.push_back(entry->path().stem());
    }
  }
  std::ranges::sort(languages);
  return languages;
}

Dictionary textsIn(const std::filesystem::path& file) {
  const auto bytes = readWholeFile(file, maxFileBytes);
  const std::optional<Value> list = bytes ? readPropertyList(*bytes) : std::nullopt;
  const auto* texts = list ? list->as<Dictionary>() : nullptr;
  return texts != nullptr ? *texts : Dictionary();
}

}  // namespace

const LocalizedStrings& LocalizedStrings::main() {
  static const LocalizedStrings mainStrings(Bundle::main().folder());
  return mainStrings;
}

LocalizedStrings::LocalizedStrings(std::filesystem::path folder)
    : folder_(std::move(folder)), languages_(languagesIn(folder_)) {}

std::string LocalizedStrings::text(std::string_view key, const std::string& locale) const {
  std::vector<std::string> languages = languagesOf(locale);
  languages.emplace_back(developmentLanguage);
  for (const std::string& language : languages) {
    if (!std::ranges::binary_search(languages_, language)) {
      continue;
    }
    if (const auto* text = textsOf(language).get<std::string>(key)) {
      return *text;
    }
  }
  return std::string(key);
}

const Dictionary& LocalizedStrings::textsOf(const std::string& language) const {
  const std::scoped_lock lock(reading_);
  const auto [texts, isNew] = texts_.try_emplace(language);
  if (isNew) {
    texts->second = textsIn(folder_ / (language + ".lproj") / "Localizable.strings");
  }
  return texts->second;
}

}  // namespace quillpad
