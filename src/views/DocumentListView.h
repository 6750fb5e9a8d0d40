// What the two medium views have in common: a coloured header above the first three rows of a list.
// A plain value.
#pragma once

#include <string>

#include "platform/foundation/Value.h"
#include "platform/ui/View.h"

namespace quillpad {

struct DocumentListView {
  // A shown record that is not a dictionary ends the process; those after the third are not looked
  // at.
  ui::View body() const;

  std::string title;  // looked up
  ui::Color accent;
  std::string linkUrl;
  Array records;
};

}  // namespace quillpad
