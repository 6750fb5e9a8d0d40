// HTML made from templates. Text gets into it by escaped() or trusted() alone, so that text of
// anyone else's cannot become markup by oversight. Pure.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "home/language/Language.h"

namespace quillpad::home {

class Markup {
 public:
  Markup() = default;

  const std::string& html() const& { return html_; }
  std::string html() && { return std::move(html_); }
  bool empty() const { return html_.empty(); }
  Markup& operator+=(const Markup& other) {
    html_ += other.html_;
    return *this;
  }

 private:
  explicit Markup(std::string html) : html_(std::move(html)) {}
  friend Markup trusted(std::string html);

  std::string html_;
};

// The text as HTML, for content and quoted attributes.
Markup escaped(std::string_view text);

// HTML that this program made.
Markup trusted(std::string html);

// A page's pictures take megabytes, so they are not copied on their way into it.
struct Slot {
  std::string_view name;
  const Markup& value;
};

// The template with each {{name}} replaced by the slot's value, and each {{"text"}} by the text in
// the language. A name without a slot ends the process: it is a fault of this program.
Markup filled(
    std::string_view page, std::initializer_list<Slot> slots, const Language& language = {});

// The text with {1}, {2} and so on replaced by markup.
Markup filledIn(std::string_view text, std::initializer_list<Markup> values);

// What text() in the script can be asked for, as JSON that may be part of a script element.
Markup textsOf(std::string_view script, const Language& language);

}  // namespace quillpad::home
