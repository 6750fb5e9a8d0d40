#include "platform/paint/PngReader.h"

#include <cstdint>
#include <string>

#include "platform/paint/Png.h"

namespace quillpad::drawing {

namespace {

// Reads what was begun.
std::expected<Bitmap, std::string> finished(png_image& image) {
  image.format = PNG_FORMAT_RGBA;
  if (std::int64_t{image.width} * image.height > maximumPixels) {
    png_image_free(&image);
    return std::unexpected("it has more than " + std::to_string(maximumPixels) + " pixels");
  }
  Bitmap picture{
      .width = static_cast<int>(image.width),
      .height = static_cast<int>(image.height),
      .pixels = std::vector<ui::Rgba>(std::size_t{image.width} * image.height)};
  static_assert(sizeof(ui::Rgba) == 4);
  if (png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr) == 0) {
    return std::unexpected(std::string(image.message));
  }
  return picture;
}

}  // namespace

std::expected<Bitmap, std::string> readPng(std::span<const std::uint8_t> bytes) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) {
    return std::unexpected(std::string(image.message));
  }
  return finished(image);
}

std::expected<Bitmap, std::string> readPngFile(const std::filesystem::path& file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  const bool begun = png_image_begin_read_from_file(&image, file.c_str()) != 0;
  auto picture = begun ? finished(image) : std::unexpected(std::string(image.message));
  if (!picture) {
    return std::unexpected(file.string() + ": not a readable PNG file: " + picture.error());
  }
  return picture;
}

}  // namespace quillpad::drawing
