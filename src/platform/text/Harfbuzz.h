// HarfBuzz, loaded with the first font. Private to the text.
#pragma once

#include <hb-ot.h>
#include <hb.h>

#include "platform/foundation/LateLibrary.h"

namespace quillpad::drawing {

inline constexpr const char* libharfbuzz = "libharfbuzz.so.0";
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_blob_create_from_file);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_blob_destroy);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_buffer_add_utf8);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_buffer_clear_contents);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_buffer_create);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_buffer_destroy);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_buffer_get_glyph_infos);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_buffer_get_glyph_positions);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_buffer_set_direction);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_buffer_set_language);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_buffer_set_script);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_face_create);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_face_destroy);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_face_get_upem);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_font_create);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_font_destroy);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_font_get_face);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_font_get_nominal_glyph);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_language_from_string);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_ot_color_has_png);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_script_from_string);
QUILLPAD_LATE_FUNCTION(libharfbuzz, hb_shape);

}  // namespace quillpad::drawing
