#include "platform/text/Itemizer.h"

#include <algorithm>
#include <cstdint>
#include <unicode/ubidi.h>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/utext.h>

#include "platform/foundation/Utf8.h"

namespace quillpad::drawing {
namespace {

template <auto Close>
struct Closer {
  void operator()(auto* object) const { Close(object); }
};

using BidiHandle = std::unique_ptr<UBiDi, Closer<ubidi_close>>;
using BreakHandle = std::unique_ptr<UBreakIterator, Closer<ubrk_close>>;

constexpr char32_t textStyleSelector = 0xFE0E;
constexpr char32_t emojiStyleSelector = 0xFE0F;
constexpr char32_t enclosingKeycap = 0x20E3;

// A piece of text in UTF-16, and where each of its units begins in the text it was made from.
struct WideText {
  std::u16string units;
  std::vector<std::size_t> places;  // one more than there are units
};

WideText widened(std::string_view text, std::size_t begin, std::size_t end) {
  WideText wide;
  wide.units.reserve(end - begin);
  wide.places.reserve(end - begin + 1);
  for (std::size_t at = begin; at < end;) {
    const std::size_t place = at;
    const char32_t character = nextCharacter(text, at);
    if (character >= 0x10000) {
      wide.units += static_cast<char16_t>(0xD7C0 + (character >> 10U));
      wide.units += static_cast<char16_t>(0xDC00 + (character & 0x3FFU));
      wide.places.push_back(place);
    } else {
      wide.units += static_cast<char16_t>(character);
    }
    wide.places.push_back(place);
  }
  wide.places.push_back(end);
  return wide;
}

bool has(char32_t character, UProperty property) {
  return u_hasBinaryProperty(static_cast<UChar32>(character), property) != 0;
}

// Whether the characters that belong together are meant as a picture in colour.
bool isEmoji(std::u32string_view cluster) {
  if (cluster.contains(textStyleSelector)) {
    return false;
  }
  return has(cluster.front(), UCHAR_EMOJI_PRESENTATION) || cluster.contains(emojiStyleSelector) ||
         cluster.contains(enclosingKeycap);
}

// The characters that a font must have a glyph for.
std::u32string visible(std::u32string_view cluster) {
  std::u32string characters;
  std::ranges::copy_if(cluster, std::back_inserter(characters), [](char32_t character) {
    return !has(character, UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
  });
  return characters;
}

// The script that the characters stand for by themselves, if any.
std::optional<Script> ownScript(std::u32string_view cluster) {
  for (const char32_t character : cluster) {
    UErrorCode status = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(static_cast<UChar32>(character), &status);
    if (script > USCRIPT_INHERITED) {
      const char* letters = uscript_getShortName(script);
      Script packed = 0;
      for (int i = 0; i < 4; ++i) {
        packed = (packed << 8U) | static_cast<std::uint8_t>(letters[i]);
      }
      return packed;
    }
  }
  return std::nullopt;
}

// The language that the characters give away: Han ones beside kana are Japanese, whatever the card.
std::string languageOf(std::string_view text, const std::string& otherwise) {
  for (std::size_t at = 0; at < text.size();) {
    const char32_t character = nextCharacter(text, at);
    if (character >= 0x3041 && character <= 0x30FF && character != 0x30FB) {
      return "ja";
    }
    if (character >= 0xAC00 && character <= 0xD7A3) {
      return "ko";
    }
  }
  return otherwise;
}

// Chooses the font of one cluster after the other.
class FontChooser {
 public:
  FontChooser(FontBook& fonts, const TextStyle& style, std::string language)
      : fonts_(fonts), style_(style), language_(std::move(language)) {}

  FontId choose(std::u32string_view cluster, Script script) {
    const std::u32string characters = visible(cluster);
    // A space goes with the text before it, but not with a picture: those fonts' is as wide as one.
    const bool staysWithLast = characters == U" " && last_ && !fonts_.hasColorBitmaps(*last_) &&
                               fonts_.covers(*last_, characters);
    if (characters.empty() || staysWithLast) {
      return last_.value_or(fonts_.system(style_.weight));
    }
    last_ = find(cluster, characters, script);
    return *last_;
  }

 private:
  FontId find(std::u32string_view cluster, const std::u32string& characters, Script script) {
    const FontId system = fonts_.system(style_.weight);
    if (isEmoji(cluster)) {
      // A sequence is one picture, or several where the font does not know it.
      const std::u32string_view first(characters.data(), 1);
      if (const auto font = fonts_.fallback(first, emojiScript, style_.weight, language_)) {
        return *font;
      }
    }
    if (fonts_.covers(system, characters)) {
      return system;
    }
    if (const auto font = fonts_.fallback(characters, script, style_.weight, language_)) {
      return *font;
    }
    // No font has the whole of it: the one that has its base, then.
    const std::u32string base = characters.substr(0, 1);
    if (fonts_.covers(system, base)) {
      return system;
    }
    return fonts_.fallback(base, script, style_.weight, language_).value_or(system);
  }

  FontBook& fonts_;
  const TextStyle& style_;
  std::string language_;
  std::optional<FontId> last_;
};

}  // namespace

class Itemizer::Tools {
 public:
  Tools() : bidi(ubidi_open()) {
    UErrorCode status = U_ZERO_ERROR;
    characters.reset(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
  }

  UBreakIterator* lines(const std::string& language) {
    if (!lines_ || language != linesLanguage_) {
      std::string locale = language;
      std::ranges::replace(locale, '-', '_');
      UErrorCode status = U_ZERO_ERROR;
      lines_.reset(ubrk_open(UBRK_LINE, locale.c_str(), nullptr, 0, &status));
      linesLanguage_ = language;
    }
    return lines_.get();
  }

  BidiHandle bidi;
  BreakHandle characters;

 private:
  BreakHandle lines_;
  std::string linesLanguage_;
};

Itemizer::Itemizer(FontBook& fonts) : fonts_(fonts) {}

Itemizer::~Itemizer() = default;

Itemizer::Items Itemizer::itemize(
    std::string_view text,
    std::size_t begin,
    std::size_t end,
    const TextStyle& style,
    std::optional<bool> rightToLeft) {
  if (!tools_) {
    tools_ = std::make_unique<Tools>();
  }
  const WideText wide = widened(text, begin, end);
  const auto length = static_cast<int32_t>(wide.units.size());

  UBiDiLevel paragraph = style.rightToLeft ? UBIDI_DEFAULT_RTL : UBIDI_DEFAULT_LTR;
  if (rightToLeft) {
    paragraph = *rightToLeft ? 1 : 0;
  }
  UErrorCode status = U_ZERO_ERROR;
  ubidi_setPara(tools_->bidi.get(), wide.units.data(), length, paragraph, nullptr, &status);
  const UBiDiLevel* levels = ubidi_getLevels(tools_->bidi.get(), &status);

  Items items;
  items.rightToLeft = ubidi_getParaLevel(tools_->bidi.get()) % 2 != 0;
  UBreakIterator* clusters = tools_->characters.get();
  ubrk_setText(clusters, wide.units.data(), length, &status);
  if (U_FAILURE(status) != 0) {
    return {{{.begin = begin, .end = end, .font = fonts_.system(style.weight)}}, false};
  }

  const std::string_view piece = text.substr(begin, end - begin);
  FontChooser chooser(fonts_, style, languageOf(piece, style.language));
  std::optional<Script> script;
  std::size_t unsettled = 0;  // stretches at the front that wait for a script
  std::u32string cluster;
  for (int32_t from = 0, to = ubrk_next(clusters); to != UBRK_DONE;
       from = to, to = ubrk_next(clusters)) {
    const std::size_t clusterBegin = wide.places[static_cast<std::size_t>(from)];
    const std::size_t clusterEnd = wide.places[static_cast<std::size_t>(to)];
    cluster.clear();
    for (std::size_t at = clusterBegin; at < clusterEnd;) {
      cluster += nextCharacter(text, at);
    }
    if (const auto own = ownScript(cluster)) {
      for (; !script && unsettled > 0; --unsettled) {
        items.stretches[unsettled - 1].script = *own;
      }
      script = own;
    }
    const Stretch stretch{
        .begin = clusterBegin,
        .end = clusterEnd,
        .font = chooser.choose(cluster, script.value_or(latinScript)),
        .level = levels[from],
        .script = script.value_or(latinScript)};
    Stretch* last = items.stretches.empty() ? nullptr : &items.stretches.back();
    if (last != nullptr && last->font == stretch.font && last->level == stretch.level &&
        last->script == stretch.script) {
      last->end = clusterEnd;
    } else {
      items.stretches.push_back(stretch);
      unsettled += script ? 0 : 1;
    }
  }
  return items;
}

std::vector<std::size_t> Itemizer::lineBreaks(std::string_view text, const std::string& language) {
  if (!tools_) {
    tools_ = std::make_unique<Tools>();
  }
  std::vector<std::size_t> breaks;
  UBreakIterator* lines = tools_->lines(language);
  UErrorCode status = U_ZERO_ERROR;
  UText utf8 = UTEXT_INITIALIZER;
  utext_openUTF8(&utf8, text.data(), static_cast<int64_t>(text.size()), &status);
  ubrk_setUText(lines, &utf8, &status);
  if (U_SUCCESS(status) != 0) {
    for (int32_t place = ubrk_next(lines); place != UBRK_DONE; place = ubrk_next(lines)) {
      breaks.push_back(static_cast<std::size_t>(place));
    }
  }
  utext_close(&utf8);
  return breaks;
}

}  // namespace quillpad::drawing
