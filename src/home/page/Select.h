// A field of a form with options to choose from: the chosen one is selected. One that is not among
// them stands behind them as it is, so that the form says what was asked for.
#pragma once

#include <string_view>

#include "home/language/Language.h"
#include "home/page/Markup.h"
#include "platform/ui/Color.h"

namespace quillpad::home {

class Select {
 public:
  explicit Select(std::string_view chosen) : chosen_(chosen) {}

  Select& add(std::string_view value, std::string_view label);

  Markup markup() const;

 private:
  std::string_view chosen_;
  Markup markup_;
  bool isOffered_ = false;
};

// The appearances and the scales that pictures can have.
Markup appearanceOptions(ui::Appearance chosen, const Language& language);
Markup scaleOptions(int chosen);

}  // namespace quillpad::home
