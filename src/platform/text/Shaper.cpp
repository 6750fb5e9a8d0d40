#include "platform/text/Shaper.h"

#include <algorithm>

#include "platform/text/Harfbuzz.h"
#include "platform/text/Unicode.h"

namespace quillpad::drawing {

void Shaper::Release::operator()(hb_buffer_t* buffer) const { hb_buffer_destroy(buffer); }

Shaper::Shaper(FontBook& fonts) : fonts_(fonts), buffer_(hb_buffer_create()) {}

Shaper::~Shaper() = default;

std::span<const ShapedGlyph> Shaper::shape(
    std::string_view text, const TextRun& run, const std::string& language) {
  // A few characters around the run are enough to know whether its ends join.
  constexpr std::size_t context = 32;
  const std::size_t begin = run.begin - std::min(run.begin, context);
  const std::size_t end = std::min(run.end + context, text.size());

  hb_buffer_t* buffer = buffer_.get();
  hb_buffer_clear_contents(buffer);
  hb_buffer_add_utf8(
      buffer,
      text.data() + begin,
      static_cast<int>(end - begin),
      static_cast<unsigned>(run.begin - begin),
      static_cast<int>(run.end - run.begin));
  hb_buffer_set_direction(buffer, run.level % 2 == 0 ? HB_DIRECTION_LTR : HB_DIRECTION_RTL);
  const char* script = uscript_getShortName(static_cast<UScriptCode>(run.script));
  hb_buffer_set_script(buffer, hb_script_from_string(script, -1));
  hb_buffer_set_language(
      buffer, hb_language_from_string(language.data(), static_cast<int>(language.size())));
  // The system font's contextual alternates draw other characters than the text has: an arrow for
  // "->", "×" for the "x" in "3x4". In other fonts they are forms that some scripts cannot do
  // without.
  static constexpr hb_feature_t withoutAlternates{
      .tag = HB_TAG('c', 'a', 'l', 't'),
      .value = 0,
      .start = HB_FEATURE_GLOBAL_START,
      .end = HB_FEATURE_GLOBAL_END};
  hb_shape(
      fonts_.shaper(run.font), buffer, &withoutAlternates, FontBook::isSystem(run.font) ? 1 : 0);

  unsigned count = 0;
  const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer, &count);
  const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, &count);
  const auto perEm = static_cast<float>(1 / fonts_.unitsPerEm(run.font));
  glyphs_.resize(count);
  for (unsigned i = 0; i < count; ++i) {
    glyphs_[i] = {
        .id = infos[i].codepoint,
        .text = static_cast<std::uint32_t>(infos[i].cluster + begin),
        .advance = static_cast<float>(positions[i].x_advance) * perEm,
        .xOffset = static_cast<float>(positions[i].x_offset) * perEm,
        .yOffset = static_cast<float>(positions[i].y_offset) * perEm};
  }
  return glyphs_;
}

}  // namespace quillpad::drawing
