// PNG files as bitmaps. Functions of their arguments, callable from any thread.
#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <span>
#include <string>

#include "platform/text/Bitmap.h"

namespace quillpad::drawing {

// The picture in a PNG file's bytes, of any kind of PNG, or why it cannot be read.
std::expected<Bitmap, std::string> readPng(std::span<const std::uint8_t> bytes);

// The same for a file; the error names it.
std::expected<Bitmap, std::string> readPngFile(const std::filesystem::path& file);

}  // namespace quillpad::drawing
