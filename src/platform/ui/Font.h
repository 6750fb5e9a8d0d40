// Fonts by what they are for; the home screen knows the files. Plain values.
#pragma once

#include <array>

#include "platform/foundation/Named.h"

namespace quillpad::ui {

enum class Weight { regular, medium, semibold };

inline constexpr std::array weightNames{
    Named{"regular", Weight::regular},
    Named{"medium", Weight::medium},
    Named{"semibold", Weight::semibold}};

// The system font in its default design, size in points.
struct Font {
  double size = 17;
  Weight weight = Weight::regular;
  friend bool operator==(const Font&, const Font&) = default;
};

}  // namespace quillpad::ui
