// ICU's numbers, loaded with the first amount. Private to the formatter.
#pragma once

#include <unicode/unum.h>
#include <unicode/ustring.h>

#include "platform/foundation/LateLibrary.h"

namespace quillpad {

inline constexpr const char* libicui18n = "libicui18n.so." U_ICU_VERSION_SHORT;
QUILLPAD_LATE_FUNCTION(libicui18n, unum_close);
QUILLPAD_LATE_FUNCTION(libicui18n, unum_formatDouble);
QUILLPAD_LATE_FUNCTION(libicui18n, unum_open);
QUILLPAD_LATE_FUNCTION(libicui18n, unum_setAttribute);
QUILLPAD_LATE_FUNCTION(libicui18n, unum_setSymbol);

inline constexpr const char* libicuuc = "libicuuc.so." U_ICU_VERSION_SHORT;
QUILLPAD_LATE_FUNCTION(libicuuc, u_strFromUTF8);
QUILLPAD_LATE_FUNCTION(libicuuc, u_strToUTF8);

}  // namespace quillpad
