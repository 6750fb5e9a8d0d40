// A field of a form with options to choose from: the chosen one is selected. One that is not among
// them stands behind them as it is, so that the form says what was asked for.
#pragma once

#include <string>
#include <string_view>

#include "home/page/Markup.h"
#include "home/page/PageFiles.h"

namespace quillpad::home {

class Select {
 public:
  explicit Select(std::string_view chosen) : chosen_(chosen) {}

  Select& add(std::string_view value, std::string_view label) {
    markup_ += filled(
        page::optionHtml,
        {{"value", escaped(value)},
         {"selected", escaped(value == chosen_ ? " selected" : "")},
         {"label", escaped(label)}});
    isOffered_ = isOffered_ || value == chosen_;
    return *this;
  }

  Markup markup() const {
    return isOffered_ || chosen_.empty() ? markup_ : Select(*this).add(chosen_, chosen_).markup_;
  }

 private:
  std::string_view chosen_;
  Markup markup_;
  bool isOffered_ = false;
};

// The scales that a picture can have.
inline Markup scaleOptions(int chosen) {
  const std::string name = std::to_string(chosen);
  return Select(name).add("2", "2x").add("1", "1x").add("3", "3x").markup();
}

}  // namespace quillpad::home
