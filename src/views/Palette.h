// The fixed colours of the widgets, the same in light and dark appearance.
#pragma once

#include "platform/ui/Color.h"

namespace quillpad {

inline constexpr ui::Rgba salesAccent{17, 184, 38};
inline constexpr ui::Rgba salesTint{176, 239, 184};
inline constexpr ui::Rgba unpaidAccent{255, 161, 29};
inline constexpr ui::Rgba unpaidTint{254, 194, 110};
inline constexpr ui::Rgba pendingAccent{34, 114, 255};
inline constexpr ui::Rgba pendingTint{176, 204, 255};
inline constexpr ui::Rgba separatorGrey{220, 220, 220};

}  // namespace quillpad
