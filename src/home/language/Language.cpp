#include "home/language/Language.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "home/language/Catalogues.h"
#include "platform/foundation/Codec.h"
#include "platform/foundation/Fatal.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/Locale.h"

namespace quillpad::home {
namespace {

constexpr std::size_t maxPreferences = 32;

using Texts = std::map<std::string, std::string, std::less<>>;

Texts textsIn(std::string_view json) {
  const auto document = readJson(json, JsonFragments::refused);
  if (!document) {
    fatal("a catalogue of texts is not JSON: " + document.error().reason);
  }
  return decode<Texts>(Decoder(*document));
}

std::string_view trimmed(std::string_view text) {
  const auto first = std::min(text.find_first_not_of(" \t"), text.size());
  text.remove_prefix(first);
  return text.substr(0, text.find_last_not_of(" \t") + 1);
}

struct Preference {
  std::string tag;
  double weight = 1;
};

Preference preferenceIn(std::string_view item) {
  const std::size_t end = item.find(';');
  Preference preference{.tag = std::string(trimmed(item.substr(0, end)))};
  if (const std::size_t q = item.find("q=", std::min(end, item.size())); q != item.npos) {
    preference.weight = 0;
    std::from_chars(item.data() + q + 2, item.data() + item.size(), preference.weight);
  }
  return preference;
}

// The most preferred first.
std::vector<Preference> preferencesIn(std::string_view list) {
  std::vector<Preference> preferences;
  while (!list.empty() && preferences.size() < maxPreferences) {
    const std::size_t end = std::min(list.find(','), list.size());
    preferences.push_back(preferenceIn(list.substr(0, end)));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  std::erase_if(preferences, [](const Preference& preference) {
    return preference.tag.empty() || !(preference.weight > 0);
  });
  std::ranges::stable_sort(preferences, std::greater(), &Preference::weight);
  return preferences;
}

}  // namespace

struct Language::Catalogue {
  std::string tag;
  Texts texts;
};

const Language::Catalogue* Language::catalogueOf(std::string_view tag) {
  static const std::vector<Catalogue> all{
      {"ar", textsIn(catalogues::arJson)},
      {"de", textsIn(catalogues::deJson)},
      {"es", textsIn(catalogues::esJson)},
      {"fr", textsIn(catalogues::frJson)},
      {"ja", textsIn(catalogues::jaJson)},
      {"zh-Hans", textsIn(catalogues::zhHansJson)}};
  const auto found = std::ranges::find(all, tag, &Catalogue::tag);
  return found == all.end() ? nullptr : &*found;
}

Language Language::preferred(std::string_view preferences) {
  for (const Preference& preference : preferencesIn(preferences)) {
    for (const std::string& language : languagesOf(preference.tag)) {
      const Catalogue* catalogue = catalogueOf(language);
      if (catalogue != nullptr || language == "en") {
        return Language(catalogue);
      }
    }
  }
  return {};
}

std::string_view Language::tag() const {
  return catalogue_ == nullptr ? std::string_view("en") : std::string_view(catalogue_->tag);
}

bool Language::isRightToLeft() const { return quillpad::isRightToLeft(std::string(tag())); }

std::string Language::text(
    std::string_view english, std::initializer_list<std::string_view> values) const {
  if (catalogue_ != nullptr) {
    if (const auto found = catalogue_->texts.find(english); found != catalogue_->texts.end()) {
      return withValues(found->second, values);
    }
  }
  return withValues(english, values);
}

std::string withValues(std::string_view text, std::span<const std::string_view> values) {
  std::string result;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool isPlace = text[at] == '{' && at + 2 < text.size() && text[at + 2] == '}';
    const auto index = isPlace ? static_cast<std::size_t>(text[at + 1] - '1') : values.size();
    if (index < values.size()) {
      result += values[index];
      at += 2;
    } else {
      result += text[at];
    }
  }
  return result;
}

}  // namespace quillpad::home
