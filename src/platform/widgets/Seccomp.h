// libseccomp, loaded at the start of the extension. Private to the sandbox.
#pragma once

#include <seccomp.h>

#include "platform/foundation/LateLibrary.h"

namespace quillpad::widgets {

inline constexpr const char* libseccomp = "libseccomp.so.2";
QUILLPAD_LATE_FUNCTION(libseccomp, seccomp_attr_set);
QUILLPAD_LATE_FUNCTION(libseccomp, seccomp_init);
QUILLPAD_LATE_FUNCTION(libseccomp, seccomp_load);
QUILLPAD_LATE_FUNCTION(libseccomp, seccomp_release);
QUILLPAD_LATE_FUNCTION(libseccomp, seccomp_rule_add_array);

}  // namespace quillpad::widgets
