// FreeType, loaded with the first font. Private to the text.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include "platform/foundation/LateLibrary.h"

namespace quillpad::drawing {

inline constexpr const char* libfreetype = "libfreetype.so.6";
QUILLPAD_LATE_FUNCTION(libfreetype, FT_Done_Face);
QUILLPAD_LATE_FUNCTION(libfreetype, FT_Done_FreeType);
QUILLPAD_LATE_FUNCTION(libfreetype, FT_Init_FreeType);
QUILLPAD_LATE_FUNCTION(libfreetype, FT_Load_Glyph);
QUILLPAD_LATE_FUNCTION(libfreetype, FT_New_Face);
QUILLPAD_LATE_FUNCTION(libfreetype, FT_Outline_Decompose);
QUILLPAD_LATE_FUNCTION(libfreetype, FT_Outline_Translate);
QUILLPAD_LATE_FUNCTION(libfreetype, FT_Render_Glyph);
QUILLPAD_LATE_FUNCTION(libfreetype, FT_Select_Size);
QUILLPAD_LATE_FUNCTION(libfreetype, FT_Set_Char_Size);

}  // namespace quillpad::drawing
