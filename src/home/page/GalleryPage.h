// The pages that `gallery` writes beside its pictures. Pure.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "home/page/Markup.h"
#include "platform/text/Geometry.h"

namespace quillpad::home {

struct GalleryWidget {
  // Its files are <stem>-light.png and <stem>-dark.png beside the page.
  struct Picture {
    std::string stem;
    std::string title;
    drawing::Size size;  // in points
    std::string accessibilityLabel;
  };

  std::string kind;
  std::string displayName;
  std::string description;
  std::vector<Picture> pictures;
};

Markup galleryPage(std::span<const GalleryWidget> widgets);

// What became of a recorded picture. Bytes of PNG files, empty where there is none.
struct PictureChange {
  std::string title;
  std::string fileName;
  std::string change;    // in words
  drawing::Size size{};  // in points
  std::string expected{};
  std::string actual{};
  std::string difference{};
};

// Shows the expected picture, the actual one and their difference side by side, and the first two
// over each other, by a slider and in turns. Of very many changes it shows the first ones.
Markup changesPage(const std::string& summary, std::span<const PictureChange> changes);

}  // namespace quillpad::home
