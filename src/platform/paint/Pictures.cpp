#include "platform/paint/Pictures.h"

#include "platform/paint/PngReader.h"

namespace quillpad::drawing {

const Bitmap* Pictures::find(const std::string& name, int scale) {
  const auto [entry, isNew] = read_.try_emplace({name, scale});
  std::optional<Bitmap>& picture = entry->second;
  if (isNew) {
    if (const auto file = bundle_.picture(name, scale)) {
      if (auto decoded = readPngFile(*file)) {
        picture = *std::move(decoded);
      }
    }
  }
  return picture ? &*picture : nullptr;
}

Size Pictures::naturalSize(const std::string& name) {
  for (const int scale : {1, 2, 3}) {
    if (const Bitmap* picture = find(name, scale)) {
      return {
          static_cast<double>(picture->width) / scale,
          static_cast<double>(picture->height) / scale};
    }
  }
  return {};
}

}  // namespace quillpad::drawing
