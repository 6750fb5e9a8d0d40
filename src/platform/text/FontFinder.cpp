#include "platform/text/FontFinder.h"

#include <algorithm>
#include <array>
#include <fontconfig/fontconfig.h>
#include <unicode/uchar.h>
#include <unicode/uloc.h>
#include <unicode/uscript.h>

namespace quillpad::drawing {
namespace {

template <auto Destroy>
struct Destroyer {
  void operator()(auto* object) const { Destroy(object); }
};

using ConfigHandle = std::unique_ptr<FcConfig, Destroyer<FcConfigDestroy>>;
using PatternHandle = std::unique_ptr<FcPattern, Destroyer<FcPatternDestroy>>;
using CharSetHandle = std::unique_ptr<FcCharSet, Destroyer<FcCharSetDestroy>>;

// The system's own configuration takes ten times as long to read as its caches. Only its folders
// matter here: what suits a script is asked for by name.
constexpr const char* folders = R"(<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
  <dir>/usr/share/fonts</dir>
  <dir>/usr/local/share/fonts</dir>
  <dir prefix="xdg">fonts</dir>
  <cachedir>/var/cache/fontconfig</cachedir>
  <cachedir prefix="xdg">fontconfig</cachedir>
</fontconfig>)";

struct Wish {
  std::string family;
  std::string language;  // as fontconfig writes it
};

std::string textOf(Script script) {
  std::string letters;
  for (const unsigned shift : {24U, 16U, 8U, 0U}) {
    letters += static_cast<char>((script >> shift) & 0xFFU);
  }
  return letters;
}

// The language tag with the script and country that go without saying: "ja_Jpan_JP" for "ja".
std::string likely(std::string tag) {
  std::ranges::replace(tag, '-', '_');
  std::array<char, ULOC_FULLNAME_CAPACITY> full{};
  UErrorCode status = U_ZERO_ERROR;
  uloc_addLikelySubtags(tag.c_str(), full.data(), static_cast<int>(full.size()), &status);
  return U_SUCCESS(status) != 0 ? full.data() : tag;
}

// Han characters look as they do where the language is at home, and Chinese where it has none.
Wish hanWish(const std::string& language) {
  const std::string place = likely(language);
  if (place.contains("Jpan")) {
    return {"Noto Sans CJK JP", "ja"};
  }
  if (place.contains("Kore")) {
    return {"Noto Sans CJK KR", "ko"};
  }
  if (place.contains("Hant")) {
    return place.contains("HK") ? Wish{"Noto Sans CJK HK", "zh-hk"}
                                : Wish{"Noto Sans CJK TC", "zh-tw"};
  }
  return {"Noto Sans CJK SC", "zh-cn"};
}

Wish wishFor(Script script, const std::string& language) {
  if (script == emojiScript) {
    return {"Noto Color Emoji", "und-zsye"};
  }
  const std::string letters = textOf(script);
  if (script == hanScript) {
    return hanWish(language);
  }
  if (letters == "Hira" || letters == "Kana") {
    return hanWish("ja");
  }
  if (letters == "Hang") {
    return hanWish("ko");
  }
  if (letters == "Bopo") {
    return hanWish("zh-Hant");
  }
  const int32_t known = u_getPropertyValueEnum(UCHAR_SCRIPT, letters.c_str());
  const char* name = known == UCHAR_INVALID_CODE
                         ? nullptr
                         : u_getPropertyValueName(UCHAR_SCRIPT, known, U_LONG_PROPERTY_NAME);
  std::string family = "Noto Sans";
  if (name != nullptr && script != latinScript) {
    family += " " + std::string(name);
    std::ranges::replace(family, '_', ' ');
  }
  const std::string place = likely("und_" + letters);
  return {family, place.substr(0, place.find('_'))};
}

int fontconfigWeight(ui::Weight weight) {
  switch (weight) {
    case ui::Weight::regular:
      return FC_WEIGHT_REGULAR;
    case ui::Weight::medium:
      return FC_WEIGHT_MEDIUM;
    case ui::Weight::semibold:
      return FC_WEIGHT_DEMIBOLD;
  }
  return FC_WEIGHT_REGULAR;
}

const FcChar8* chars(const std::string& text) {
  return reinterpret_cast<const FcChar8*>(text.c_str());
}

}  // namespace

class FontFinder::Configuration {
 public:
  Configuration() : config_(FcConfigCreate()) {
    FcConfigParseAndLoadFromMemory(
        config_.get(), reinterpret_cast<const FcChar8*>(folders), FcFalse);
    FcConfigBuildFonts(config_.get());
  }

  FcConfig* get() const { return config_.get(); }

 private:
  ConfigHandle config_;
};

FontFinder::FontFinder() = default;
FontFinder::~FontFinder() = default;

std::optional<FontFile> FontFinder::find(
    std::u32string_view characters, Script script, ui::Weight weight, const std::string& language) {
  if (!configuration_) {
    configuration_ = std::make_unique<Configuration>();
  }
  const CharSetHandle wanted(FcCharSetCreate());
  for (const char32_t character : characters) {
    FcCharSetAddChar(wanted.get(), character);
  }
  const Wish wish = wishFor(script, language);
  const PatternHandle pattern(FcPatternCreate());
  FcPatternAddString(pattern.get(), FC_FAMILY, chars(wish.family));
  for (const std::string family : {"Noto Sans", "DejaVu Sans"}) {
    FcPatternAddString(pattern.get(), FC_FAMILY, chars(family));
  }
  FcPatternAddString(pattern.get(), FC_LANG, chars(wish.language));
  FcPatternAddCharSet(pattern.get(), FC_CHARSET, wanted.get());
  FcPatternAddInteger(pattern.get(), FC_WEIGHT, fontconfigWeight(weight));
  FcPatternAddInteger(pattern.get(), FC_SLANT, FC_SLANT_ROMAN);
  FcPatternAddBool(pattern.get(), FC_COLOR, script == emojiScript ? FcTrue : FcFalse);
  FcPatternAddBool(pattern.get(), FC_VARIABLE, FcFalse);
  FcDefaultSubstitute(pattern.get());

  FcResult result = FcResultMatch;
  const PatternHandle match(FcFontMatch(configuration_->get(), pattern.get(), &result));
  FcChar8* path = nullptr;
  FcCharSet* has = nullptr;
  if (!match || FcPatternGetString(match.get(), FC_FILE, 0, &path) != FcResultMatch ||
      FcPatternGetCharSet(match.get(), FC_CHARSET, 0, &has) != FcResultMatch ||
      FcCharSetIsSubset(wanted.get(), has) == FcFalse) {
    return std::nullopt;
  }
  FontFile file{.path = reinterpret_cast<const char*>(path)};
  FcPatternGetInteger(match.get(), FC_INDEX, 0, &file.index);
  return file;
}

}  // namespace quillpad::drawing
