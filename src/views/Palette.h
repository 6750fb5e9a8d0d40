// The colours of the widgets. Callable from any thread.
#pragma once

#include "platform/ui/Color.h"

namespace quillpad {

// The same in light and dark appearance.
inline constexpr ui::Rgba salesAccent{17, 184, 38};
inline constexpr ui::Rgba salesTint{176, 239, 184};
inline constexpr ui::Rgba unpaidAccent{255, 161, 29};
inline constexpr ui::Rgba unpaidTint{254, 194, 110};
inline constexpr ui::Rgba pendingAccent{34, 114, 255};
inline constexpr ui::Rgba pendingTint{176, 204, 255};
inline constexpr ui::Rgba separatorGrey{220, 220, 220};

// The text colour that follows the appearance: white in dark, black in any other.
class InvoiceColors {
 public:
  // A new colour, the caller's own.
  static ui::Color makeTextColor() { return {ui::blackColor, ui::whiteColor}; }

  // The one colour that all share, made at its first use.
  static const ui::Color& textColor() {
    static const ui::Color color = makeTextColor();
    return color;
  }
};

}  // namespace quillpad
