// What ICU knows of characters, scripts and lines, loaded with the first text. Private to the text.
#pragma once

#include <unicode/ubidi.h>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/uloc.h>
#include <unicode/uscript.h>
#include <unicode/ustring.h>
#include <unicode/utext.h>

#include "platform/foundation/LateLibrary.h"

namespace quillpad::drawing {

inline constexpr const char* libicuuc = "libicuuc.so." U_ICU_VERSION_SHORT;
QUILLPAD_LATE_FUNCTION(libicuuc, u_charType);
QUILLPAD_LATE_FUNCTION(libicuuc, u_hasBinaryProperty);
QUILLPAD_LATE_FUNCTION(libicuuc, u_strFromUTF8WithSub);
QUILLPAD_LATE_FUNCTION(libicuuc, ubidi_close);
QUILLPAD_LATE_FUNCTION(libicuuc, ubidi_getLength);
QUILLPAD_LATE_FUNCTION(libicuuc, ubidi_getLogicalRun);
QUILLPAD_LATE_FUNCTION(libicuuc, ubidi_getParaLevel);
QUILLPAD_LATE_FUNCTION(libicuuc, ubidi_open);
QUILLPAD_LATE_FUNCTION(libicuuc, ubidi_reorderVisual);
QUILLPAD_LATE_FUNCTION(libicuuc, ubidi_setPara);
QUILLPAD_LATE_FUNCTION(libicuuc, ubrk_close);
QUILLPAD_LATE_FUNCTION(libicuuc, ubrk_next);
QUILLPAD_LATE_FUNCTION(libicuuc, ubrk_open);
QUILLPAD_LATE_FUNCTION(libicuuc, ubrk_setUText);
QUILLPAD_LATE_FUNCTION(libicuuc, uloc_addLikelySubtags);
QUILLPAD_LATE_FUNCTION(libicuuc, uscript_getName);
QUILLPAD_LATE_FUNCTION(libicuuc, uscript_getScript);
QUILLPAD_LATE_FUNCTION(libicuuc, uscript_getShortName);
QUILLPAD_LATE_FUNCTION(libicuuc, utext_close);
QUILLPAD_LATE_FUNCTION(libicuuc, utext_openUTF8);

}  // namespace quillpad::drawing
