// How the file of a picture is called that a person keeps: all that makes it different from others.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "platform/ui/Color.h"

namespace quillpad::home {

// Those that a whole set of pictures has.
inline constexpr std::array bothAppearances{ui::Appearance::light, ui::Appearance::dark};

struct PictureName {
  std::string_view kind;
  std::string_view entry;  // a state's or a sample's name
  std::string_view screen;
  std::string_view language{};  // empty: that of the home screen
  ui::Appearance appearance = ui::Appearance::light;
  int scale = 2;  // of pixels

  // "SalesSmallWidget-snapshot-393x852-de-dark@2x.png", fit for every file system and header.
  std::string png() const;
  std::string svg() const;

 private:
  std::string stem() const;
};

}  // namespace quillpad::home
