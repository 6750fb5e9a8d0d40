// What the home screen says, in a language that it speaks. The English text is the key, so English
// needs no catalogue. Values, cheap to copy; callable from any thread.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace quillpad::home {

class Language {
 public:
  // English.
  Language() = default;

  // The most preferred one that is spoken, of tags as in Accept-Language, "de-AT,fr;q=0.7". English
  // where there is none.
  static Language preferred(std::string_view preferences);

  // For HTML's lang: "zh-Hans".
  std::string_view tag() const;
  bool isRightToLeft() const;

  // The text in this language, with {1}, {2} and so on replaced by the values; in English where
  // the catalogue lacks it.
  std::string text(
      std::string_view english, std::initializer_list<std::string_view> values = {}) const;

 private:
  struct Catalogue;
  static const Catalogue* catalogueOf(std::string_view tag);
  explicit Language(const Catalogue* catalogue) : catalogue_(catalogue) {}

  const Catalogue* catalogue_ = nullptr;  // none for English; lives as long as the program
};

// The text with {1}, {2} and so on replaced by the values; a place without a value stays.
std::string withValues(std::string_view text, std::span<const std::string_view> values);

}  // namespace quillpad::home
