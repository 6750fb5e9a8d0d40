// The list before any was fetched.
#pragma once

#include "platform/foundation/Value.h"

namespace quillpad {

// Three rows, the same for invoices and estimates. The blank behind the last name is the product's.
inline Array sampleRows() {
  return {
      Dictionary{{"no", "32"}, {"clientName", "Preivon"}, {"total", 23.89}},
      Dictionary{{"no", "28"}, {"clientName", "Dreifles"}, {"total", 132.23}},
      Dictionary{{"no", "15"}, {"clientName", "Lucien Holmes "}, {"total", 98.13}}};
}

}  // namespace quillpad
