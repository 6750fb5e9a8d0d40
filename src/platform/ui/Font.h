// Fonts by what they are for; the home screen knows the files. Plain values.
#pragma once

namespace quillpad::ui {

enum class Weight { regular, medium, semibold };

// The system font in its default design, size in points.
struct Font {
  double size = 17;
  Weight weight = Weight::regular;
  friend bool operator==(const Font&, const Font&) = default;
};

}  // namespace quillpad::ui
