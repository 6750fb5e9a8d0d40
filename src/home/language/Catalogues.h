// The catalogues of the texts folder, as they were when the program was built: JSON objects whose
// keys are the English texts.
#pragma once

#include <string_view>

namespace quillpad::home::catalogues {

extern const std::string_view arJson;
extern const std::string_view deJson;
extern const std::string_view esJson;
extern const std::string_view frJson;
extern const std::string_view jaJson;
extern const std::string_view zhHansJson;

}  // namespace quillpad::home::catalogues
