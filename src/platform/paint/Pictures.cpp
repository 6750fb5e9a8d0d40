#include "platform/paint/Pictures.h"

#include "platform/paint/PngReader.h"

namespace quillpad::drawing {

const Bitmap* Pictures::find(const std::string& name, int scale) {
  for (const int candidate : {scale, scale + 1, scale + 2, scale - 1, scale - 2}) {
    const Bitmap* picture = candidate >= 1 && candidate <= 3 ? read(name, candidate) : nullptr;
    if (picture != nullptr) {
      return picture;
    }
  }
  return nullptr;
}

const Bitmap* Pictures::read(const std::string& name, int scale) {
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
    if (const Bitmap* picture = read(name, scale)) {
      return {
          static_cast<double>(picture->width) / scale,
          static_cast<double>(picture->height) / scale};
    }
  }
  return {};
}

}  // namespace quillpad::drawing
