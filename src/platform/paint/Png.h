// libpng, loaded by the first picture that is read. Private to the reader.
#pragma once

#include <png.h>

#include "platform/foundation/LateLibrary.h"

namespace quillpad::drawing {

inline constexpr const char* libpng = "libpng16.so.16";
QUILLPAD_LATE_FUNCTION(libpng, png_image_begin_read_from_file);
QUILLPAD_LATE_FUNCTION(libpng, png_image_begin_read_from_memory);
QUILLPAD_LATE_FUNCTION(libpng, png_image_finish_read);
QUILLPAD_LATE_FUNCTION(libpng, png_image_free);

}  // namespace quillpad::drawing
