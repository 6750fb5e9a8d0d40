// ISA-L, loaded by the first picture that is written. Private to the encoder.
#pragma once

#include <isa-l/crc.h>
#include <isa-l/igzip_lib.h>

#include "platform/foundation/LateLibrary.h"

namespace quillpad::drawing {

inline constexpr const char* libisal = "libisal.so.2";
QUILLPAD_LATE_FUNCTION(libisal, crc32_gzip_refl);
QUILLPAD_LATE_FUNCTION(libisal, isal_deflate);
QUILLPAD_LATE_FUNCTION(libisal, isal_deflate_init);

}  // namespace quillpad::drawing
