// fontconfig, loaded when the system font lacks a character. Private to the text.
#pragma once

#include <fontconfig/fontconfig.h>

#include "platform/foundation/LateLibrary.h"

namespace quillpad::drawing {

inline constexpr const char* libfontconfig = "libfontconfig.so.1";
QUILLPAD_LATE_FUNCTION(libfontconfig, FcCharSetHasChar);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcConfigBuildFonts);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcConfigCreate);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcConfigDestroy);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcConfigParseAndLoadFromMemory);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcDefaultSubstitute);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcFontSetDestroy);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcFontSort);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcPatternAddBool);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcPatternAddInteger);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcPatternAddString);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcPatternCreate);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcPatternDestroy);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcPatternGetBool);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcPatternGetCharSet);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcPatternGetInteger);
QUILLPAD_LATE_FUNCTION(libfontconfig, FcPatternGetString);

}  // namespace quillpad::drawing
