// What ICU knows of host names and languages, loaded where one is not plain. Private to the
// foundation.
#pragma once

#include <unicode/uidna.h>
#include <unicode/uloc.h>

#include "platform/foundation/LateLibrary.h"

namespace quillpad {

inline constexpr const char* libicuuc = "libicuuc.so." U_ICU_VERSION_SHORT;
QUILLPAD_LATE_FUNCTION(libicuuc, uidna_close);
QUILLPAD_LATE_FUNCTION(libicuuc, uidna_nameToASCII_UTF8);
QUILLPAD_LATE_FUNCTION(libicuuc, uidna_openUTS46);
QUILLPAD_LATE_FUNCTION(libicuuc, uloc_getCountry);
QUILLPAD_LATE_FUNCTION(libicuuc, uloc_getLanguage);
QUILLPAD_LATE_FUNCTION(libicuuc, uloc_getScript);
QUILLPAD_LATE_FUNCTION(libicuuc, uloc_isRightToLeft);

}  // namespace quillpad
