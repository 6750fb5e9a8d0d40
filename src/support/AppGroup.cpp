#include "support/AppGroup.h"

namespace quillpad {

std::string_view appGroup() { return QUILLPAD_APP_GROUP; }

}  // namespace quillpad
