// Numbers as text with the current locale's digits and separators; the minus sign is "-" in every
// locale. A value of one thread.
#pragma once

#include <optional>
#include <string>

namespace quillpad {

class NumberFormatter {
 public:
  // The pattern to write with, for example "#,###.##;": half-even rounding on the shortest decimal
  // text of the number, and no minimum of integer digits where the pattern names none (0.5 is ".5",
  // 0 is "0").
  void setPositiveFormat(std::string pattern) { positiveFormat_ = std::move(pattern); }

  // The number's text, or nothing if it cannot be written with the pattern.
  std::optional<std::string> string(double number) const;

 private:
  std::string positiveFormat_;
};

}  // namespace quillpad
