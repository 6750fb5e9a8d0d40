// The page that `gallery` writes beside its pictures. Plain values.
#pragma once

#include <string>
#include <vector>

#include "platform/text/Geometry.h"

namespace quillpad::home {

struct GalleryPage {
  // Its pictures are <kind>-light.png and <kind>-dark.png beside the page.
  struct Widget {
    std::string kind;
    std::string displayName;
    std::string description;
    drawing::Size size;  // in points
    std::string accessibilityLabel;
  };

  std::string html() const;

  std::vector<Widget> widgets;
};

}  // namespace quillpad::home
