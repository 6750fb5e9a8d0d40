// HTML made from templates: every value that is put in is escaped, but for markup that says so.
// Pure.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace quillpad::home {

// HTML that was made here, as against text of anyone else's.
struct Markup {
  std::string html;
};

// The text as HTML, for content and quoted attributes.
Markup escaped(std::string_view text);

struct Slot {
  std::string_view name;
  Markup value;
};

// The template with each {{name}} replaced by the slot's value. A name without a slot ends the
// process: it is a fault of this program.
Markup filled(std::string_view page, std::initializer_list<Slot> slots);

}  // namespace quillpad::home
