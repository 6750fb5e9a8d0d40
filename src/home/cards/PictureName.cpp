#include "home/cards/PictureName.h"

namespace quillpad::home {

std::string PictureName::stem() const {
  std::string name(kind);
  for (const std::string_view part : {entry, screen, language}) {
    if (!part.empty()) {
      name.append("-").append(part);
    }
  }
  std::erase_if(name, [](char c) {
    return c == '"' || c == '\\' || c == '/' || (c >= 0 && c < ' ') || c == '\x7F';
  });
  return name + (appearance == ui::Appearance::dark ? "-dark" : "-light");
}

std::string PictureName::png() const { return stem() + "@" + std::to_string(scale) + "x.png"; }
std::string PictureName::svg() const { return stem() + ".svg"; }

}  // namespace quillpad::home
