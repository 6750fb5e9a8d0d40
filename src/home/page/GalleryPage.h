// The pages that `gallery` writes beside its pictures. Pure.
#pragma once

#include <span>
#include <string>

#include "home/page/Markup.h"
#include "platform/text/Geometry.h"

namespace quillpad::home {

// Its pictures are <kind>-light.png and <kind>-dark.png beside the page.
struct GalleryWidget {
  std::string kind;
  std::string displayName;
  std::string description;
  drawing::Size size;  // in points
  std::string accessibilityLabel;
};

Markup galleryPage(std::span<const GalleryWidget> widgets);

// What became of a recorded picture. Bytes of PNG files, empty where there is none.
struct PictureChange {
  std::string title;
  std::string fileName;
  std::string change;  // in words
  drawing::Size size;  // in points
  std::string expected;
  std::string actual;
  std::string difference;
};

// Shows the expected picture, the actual one and their difference side by side.
Markup changesPage(const std::string& summary, std::span<const PictureChange> changes);

}  // namespace quillpad::home
