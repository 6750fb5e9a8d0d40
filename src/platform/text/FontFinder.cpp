#include "platform/text/FontFinder.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>
#include <vector>

#include "platform/text/Fontconfig.h"
#include "platform/text/Handle.h"
#include "platform/text/Unicode.h"

#ifdef __SANITIZE_THREAD__
// What these libraries share between threads they guard by atomic operations, which the thread
// sanitizer does not see in libraries that were not built for it.
extern "C" const char* __tsan_default_suppressions() {
  return "race:libfontconfig.so\nrace:libharfbuzz.so\nrace:libicuuc.so\n";
}
#endif

namespace quillpad::drawing {
namespace {

using ConfigHandle = Handle<FcConfig, FcConfigDestroy>;
using PatternHandle = Handle<FcPattern, FcPatternDestroy>;
using FontSetHandle = Handle<FcFontSet, FcFontSetDestroy>;

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

// Every script in every weight, many times over.
constexpr std::size_t maxRankings = 1024;

struct FontRequest {
  std::string family;
  std::string language;  // as fontconfig writes it
};

// The language tag with the script and country that go without saying: "ja_Jpan_JP" for "ja".
std::string likely(std::string tag) {
  std::ranges::replace(tag, '-', '_');
  std::array<char, ULOC_FULLNAME_CAPACITY> full{};
  UErrorCode status = U_ZERO_ERROR;
  uloc_addLikelySubtags(tag.c_str(), full.data(), static_cast<int>(full.size()), &status);
  return U_SUCCESS(status) != 0 ? full.data() : tag;
}

// Han characters look as they do where the language is at home, and Chinese where it has none.
FontRequest hanRequest(const std::string& language) {
  const std::string place = likely(language);
  if (place.contains("Jpan")) {
    return {"Noto Sans CJK JP", "ja"};
  }
  if (place.contains("Kore")) {
    return {"Noto Sans CJK KR", "ko"};
  }
  if (place.contains("Hant")) {
    return place.contains("HK") ? FontRequest{"Noto Sans CJK HK", "zh-hk"}
                                : FontRequest{"Noto Sans CJK TC", "zh-tw"};
  }
  return {"Noto Sans CJK SC", "zh-cn"};
}

FontRequest requestFor(Script script, const std::string& language) {
  const auto code = static_cast<UScriptCode>(script);
  switch (code) {
    case USCRIPT_SYMBOLS_EMOJI:
      return {"Noto Color Emoji", "und-zsye"};
    case USCRIPT_HAN:
      return hanRequest(language);
    case USCRIPT_HIRAGANA:
    case USCRIPT_KATAKANA:
      return hanRequest("ja");
    case USCRIPT_HANGUL:
      return hanRequest("ko");
    case USCRIPT_BOPOMOFO:
      return hanRequest("zh-Hant");
    default:
      break;
  }
  std::string family = "Noto Sans";
  if (code != USCRIPT_LATIN) {
    family += " " + std::string(uscript_getName(code));
    std::ranges::replace(family, '_', ' ');
  }
  const std::string place = likely("und_" + std::string(uscript_getShortName(code)));
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

bool isInColor(FcPattern* font) {
  FcBool inColor = FcFalse;
  return FcPatternGetBool(font, FC_COLOR, 0, &inColor) == FcResultMatch && inColor != FcFalse;
}

}  // namespace

struct FontFinder::Impl {
  struct RankedFont {
    FcPattern* font = nullptr;
    FcCharSet* characters = nullptr;

    bool hasAll(std::u32string_view wanted) const {
      return std::ranges::all_of(wanted, [&](char32_t character) {
        return FcCharSetHasChar(characters, character) != FcFalse;
      });
    }
  };

  Impl() : config(FcConfigCreate()) {
    FcConfigParseAndLoadFromMemory(
        config.get(), reinterpret_cast<const FcChar8*>(folders), FcFalse);
    FcConfigBuildFonts(config.get());
  }

  // All installed fonts that may be used for the script, the best one first.
  std::vector<RankedFont> ranked(Script script, ui::Weight weight, const std::string& language) {
    const FontRequest request = requestFor(script, language);
    const PatternHandle pattern(FcPatternCreate());
    FcPatternAddString(pattern.get(), FC_FAMILY, chars(request.family));
    for (const std::string family : {"Noto Sans", "DejaVu Sans"}) {
      FcPatternAddString(pattern.get(), FC_FAMILY, chars(family));
    }
    FcPatternAddString(pattern.get(), FC_LANG, chars(request.language));
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, fontconfigWeight(weight));
    FcPatternAddInteger(pattern.get(), FC_SLANT, FC_SLANT_ROMAN);
    FcPatternAddBool(pattern.get(), FC_COLOR, script == USCRIPT_SYMBOLS_EMOJI ? FcTrue : FcFalse);
    FcPatternAddBool(pattern.get(), FC_VARIABLE, FcFalse);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultMatch;
    const FontSetHandle sorted(FcFontSort(config.get(), pattern.get(), FcFalse, nullptr, &result));
    std::vector<RankedFont> ranking;
    for (int i = 0; sorted && i < sorted->nfont; ++i) {
      RankedFont font{.font = sorted->fonts[i]};  // belongs to the configuration
      if (FcPatternGetCharSet(font.font, FC_CHARSET, 0, &font.characters) == FcResultMatch &&
          (script != USCRIPT_SYMBOLS_EMOJI || isInColor(font.font))) {
        ranking.push_back(font);
      }
    }
    return ranking;
  }

  ConfigHandle config;
  std::map<std::tuple<Script, ui::Weight, std::string>, std::vector<RankedFont>> rankings;
};

FontFinder::FontFinder() = default;
FontFinder::~FontFinder() = default;

std::optional<FontFile> FontFinder::find(
    std::u32string_view characters, Script script, ui::Weight weight, const std::string& language) {
  if (!impl_) {
    impl_ = std::make_unique<Impl>();
  }
  if (impl_->rankings.size() == maxRankings) {
    impl_->rankings.clear();
  }
  std::vector<Impl::RankedFont>& ranking =
      impl_->rankings[{script, weight, script == USCRIPT_HAN ? language : std::string()}];
  if (ranking.empty()) {
    ranking = impl_->ranked(script, weight, language);
  }
  const auto best = std::ranges::find_if(
      ranking, [&](const Impl::RankedFont& font) { return font.hasAll(characters); });
  FcChar8* path = nullptr;
  if (best == ranking.end() || FcPatternGetString(best->font, FC_FILE, 0, &path) != FcResultMatch) {
    return std::nullopt;
  }
  FontFile file{.path = reinterpret_cast<const char*>(path)};
  FcPatternGetInteger(best->font, FC_INDEX, 0, &file.index);
  return file;
}

}  // namespace quillpad::drawing
