#include "platform/text/Itemizer.h"

#include <algorithm>

#include "platform/foundation/Utf8.h"
#include "platform/text/Handle.h"
#include "platform/text/Unicode.h"

namespace quillpad::drawing {
namespace {

using BreakHandle = Handle<UBreakIterator, ubrk_close>;

constexpr char32_t textStyleSelector = 0xFE0E;
constexpr char32_t emojiStyleSelector = 0xFE0F;
constexpr char32_t enclosingKeycap = 0x20E3;

// The places behind the text's begin where the iterator stops.
std::vector<std::size_t> boundaries(UBreakIterator* iterator, std::string_view text) {
  std::vector<std::size_t> places;
  UErrorCode status = U_ZERO_ERROR;
  UText utf8 = UTEXT_INITIALIZER;
  utext_openUTF8(&utf8, text.data(), static_cast<int64_t>(text.size()), &status);
  ubrk_setUText(iterator, &utf8, &status);
  if (U_SUCCESS(status) != 0) {
    for (int32_t place = ubrk_next(iterator); place != UBRK_DONE; place = ubrk_next(iterator)) {
      places.push_back(static_cast<std::size_t>(place));
    }
  }
  utext_close(&utf8);
  return places;
}

std::u16string utf16Of(std::string_view text, UErrorCode& status) {
  constexpr UChar32 replacement = 0xFFFD;
  const auto size = static_cast<int32_t>(text.size());
  std::u16string utf16(text.size(), u'\0');  // never longer than in UTF-8
  int32_t length = 0;
  u_strFromUTF8WithSub(
      utf16.data(), size, &length, text.data(), size, replacement, nullptr, &status);
  utf16.resize(static_cast<std::size_t>(length));
  return utf16;
}

template <class Value>
void append(std::vector<RunUpTo<Value>>& runs, std::size_t end, Value value) {
  if (!runs.empty() && runs.back().value == value) {
    runs.back().end = end;
  } else {
    runs.push_back({end, value});
  }
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
std::optional<Script> ownScript(std::string_view cluster) {
  for (std::size_t at = 0; at < cluster.size();) {
    UErrorCode status = U_ZERO_ERROR;
    const auto character = static_cast<UChar32>(nextCharacter(cluster, at));
    const UScriptCode script = uscript_getScript(character, &status);
    if (script > USCRIPT_INHERITED && script != USCRIPT_UNKNOWN) {
      return script;
    }
  }
  return std::nullopt;
}

// The language that the scripts give away: Han characters beside kana are Japanese, whatever the
// card.
std::string languageOf(std::span<const ScriptRun> scripts, const std::string& otherwise) {
  for (const ScriptRun& run : scripts) {
    if (run.value == USCRIPT_HIRAGANA || run.value == USCRIPT_KATAKANA) {
      return "ja";
    }
    if (run.value == USCRIPT_HANGUL) {
      return "ko";
    }
  }
  return otherwise;
}

FontId fontFor(
    std::u32string_view cluster,
    const std::u32string& characters,
    Script script,
    ui::Weight weight,
    const std::string& language,
    FontBook& fonts) {
  const FontId system = FontBook::system(weight);
  if (isEmoji(cluster)) {
    // A sequence is one picture, or several where the font does not know it.
    const std::u32string_view first(characters.data(), 1);
    if (const auto font = fonts.fallback(first, USCRIPT_SYMBOLS_EMOJI, weight, language)) {
      return *font;
    }
  }
  if (fonts.covers(system, characters)) {
    return system;
  }
  if (const auto font = fonts.fallback(characters, script, weight, language)) {
    return *font;
  }
  // No font has the whole of it: the one that has its base, then.
  const std::u32string base = characters.substr(0, 1);
  return base == characters || fonts.covers(system, base)
             ? system
             : fonts.fallback(base, script, weight, language).value_or(system);
}

// In the text's bytes, though bidirectional ordering counts in UTF-16.
std::vector<LevelRun> levelRuns(std::string_view text, UBiDi* bidi) {
  std::vector<LevelRun> runs;
  const int32_t length = ubidi_getLength(bidi);
  std::size_t at = 0;
  for (int32_t units = 0; units < length;) {
    int32_t limit = 0;
    UBiDiLevel level = 0;
    ubidi_getLogicalRun(bidi, units, &limit, &level);
    while (units < limit) {
      units += U16_LENGTH(nextCharacter(text, at));
    }
    append(runs, at, level);
  }
  return runs;
}

}  // namespace

std::vector<ScriptRun> scriptRuns(std::string_view text, std::span<const std::size_t> clusterEnds) {
  std::vector<ScriptRun> runs;
  std::size_t begin = 0;
  for (const std::size_t end : clusterEnds) {
    if (const auto own = ownScript(text.substr(begin, end - begin))) {
      append(runs, end, *own);
    } else if (!runs.empty()) {
      runs.back().end = end;
    }
    begin = end;
  }
  if (runs.empty()) {
    runs.push_back({text.size(), USCRIPT_LATIN});
  }
  return runs;
}

std::vector<FontRun> fontRuns(
    std::string_view text,
    std::span<const std::size_t> clusterEnds,
    std::span<const ScriptRun> scripts,
    const TextStyle& style,
    FontBook& fonts) {
  const std::string language = languageOf(scripts, style.language);
  std::vector<FontRun> runs;
  auto script = scripts.begin();
  std::size_t at = 0;
  std::u32string cluster;
  for (const std::size_t end : clusterEnds) {
    cluster.clear();
    while (at < end) {
      cluster += nextCharacter(text, at);
    }
    while (script->end < end) {
      ++script;
    }
    const std::u32string characters = visible(cluster);
    // A space goes with the text before it, but not with a picture: those fonts' is as wide as one.
    const bool staysWithLast = characters == U" " && !runs.empty() &&
                               !fonts.hasColorBitmaps(runs.back().value) &&
                               fonts.covers(runs.back().value, characters);
    if (characters.empty() || staysWithLast) {
      append(runs, end, runs.empty() ? FontBook::system(style.weight) : runs.back().value);
    } else {
      append(runs, end, fontFor(cluster, characters, script->value, style.weight, language, fonts));
    }
  }
  return runs;
}

std::vector<TextRun> merged(
    std::span<const ScriptRun> scripts,
    std::span<const FontRun> fonts,
    std::span<const LevelRun> levels) {
  std::vector<TextRun> runs;
  auto script = scripts.begin();
  auto font = fonts.begin();
  auto level = levels.begin();
  for (std::size_t begin = 0; script != scripts.end();) {
    const std::size_t end = std::min({script->end, font->end, level->end});
    runs.push_back(
        {.begin = begin,
         .end = end,
         .font = font->value,
         .level = level->value,
         .script = script->value});
    script += script->end == end ? 1 : 0;
    font += font->end == end ? 1 : 0;
    level += level->end == end ? 1 : 0;
    begin = end;
  }
  return runs;
}

struct Itemizer::Impl {
  Impl() : bidi(ubidi_open()) {
    UErrorCode status = U_ZERO_ERROR;
    characters.reset(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
  }

  UBreakIterator* linesIn(const std::string& language) {
    if (!lines || language != linesLanguage) {
      std::string locale = language;
      std::ranges::replace(locale, '-', '_');
      UErrorCode status = U_ZERO_ERROR;
      lines.reset(ubrk_open(UBRK_LINE, locale.c_str(), nullptr, 0, &status));
      linesLanguage = language;
    }
    return lines.get();
  }

  Handle<UBiDi, ubidi_close> bidi;
  BreakHandle characters;
  BreakHandle lines;
  std::string linesLanguage;
};

Itemizer::Itemizer(FontBook& fonts) : fonts_(fonts) {}

Itemizer::~Itemizer() = default;

Itemizer::Items Itemizer::itemize(
    std::string_view text,
    std::size_t begin,
    std::size_t end,
    const TextStyle& style,
    std::optional<bool> rightToLeft) {
  if (!impl_) {
    impl_ = std::make_unique<Impl>();
  }
  const std::string_view piece = text.substr(begin, end - begin);
  UBiDiLevel paragraph = style.rightToLeft ? UBIDI_DEFAULT_RTL : UBIDI_DEFAULT_LTR;
  if (rightToLeft) {
    paragraph = *rightToLeft ? 1 : 0;
  }
  UErrorCode status = U_ZERO_ERROR;
  const std::u16string utf16 = utf16Of(piece, status);
  UBiDi* bidi = impl_->bidi.get();
  ubidi_setPara(
      bidi, utf16.data(), static_cast<int32_t>(utf16.size()), paragraph, nullptr, &status);
  const std::vector<std::size_t> clusterEnds = boundaries(impl_->characters.get(), piece);
  if (U_FAILURE(status) != 0 || clusterEnds.empty()) {
    return {{{.begin = begin, .end = end, .font = FontBook::system(style.weight)}}, false};
  }

  const std::vector<ScriptRun> scripts = scriptRuns(piece, clusterEnds);
  const std::vector<FontRun> fonts = fontRuns(piece, clusterEnds, scripts, style, fonts_);
  Items items{merged(scripts, fonts, levelRuns(piece, bidi)), ubidi_getParaLevel(bidi) % 2 != 0};
  for (TextRun& run : items.runs) {
    run.begin += begin;
    run.end += begin;
  }
  return items;
}

std::vector<std::size_t> Itemizer::lineBreaks(std::string_view text, const std::string& language) {
  if (!impl_) {
    impl_ = std::make_unique<Impl>();
  }
  return boundaries(impl_->linesIn(language), text);
}

}  // namespace quillpad::drawing
