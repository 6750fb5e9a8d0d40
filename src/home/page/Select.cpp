#include "home/page/Select.h"

#include <string>

#include "home/page/PageFiles.h"
#include "home/page/PreviewQuery.h"

namespace quillpad::home {

Select& Select::add(std::string_view value, std::string_view label) {
  markup_ += filled(
      page::optionHtml,
      {{"value", escaped(value)},
       {"selected", escaped(value == chosen_ ? " selected" : "")},
       {"label", escaped(label)}});
  isOffered_ = isOffered_ || value == chosen_;
  return *this;
}

Markup Select::markup() const {
  return isOffered_ || chosen_.empty() ? markup_ : Select(*this).add(chosen_, chosen_).markup_;
}

Markup appearanceOptions(ui::Appearance chosen, const Language& language) {
  return Select(appearanceParameter(chosen))
      .add("", language.text("Light and dark"))
      .add("light", language.text("Light"))
      .add("dark", language.text("Dark"))
      .markup();
}

Markup scaleOptions(int chosen) {
  const std::string name = std::to_string(chosen);
  return Select(name).add("2", "2x").add("1", "1x").add("3", "3x").markup();
}

}  // namespace quillpad::home
