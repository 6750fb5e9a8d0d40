// The page that `gallery` writes beside its pictures. Plain values.
#pragma once

#include <string>
#include <vector>

#include "platform/paint/DisplayList.h"
#include "platform/text/Geometry.h"

namespace quillpad::home {

// What the card says, for who cannot see it: its texts in the order painted.
std::string spokenText(const drawing::DisplayList& list);

struct GalleryPage {
  // Its pictures are <kind>-light.png and <kind>-dark.png beside the page.
  struct Widget {
    std::string kind;
    std::string displayName;
    std::string description;
    drawing::Size size;  // in points
    std::string spokenText;
  };

  std::string html() const;

  std::vector<Widget> widgets;
};

}  // namespace quillpad::home
