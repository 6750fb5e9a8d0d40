#include "platform/paint/PngEncoder.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "platform/paint/Isal.h"

namespace quillpad::drawing {

namespace {

using namespace std::string_view_literals;

// A PNG file that grows chunk by chunk.
class Chunks {
 public:
  Chunks() { text("\x89PNG\r\n\x1a\n"sv); }

  void begin(std::string_view type) {
    length_ = bytes.size();
    number(0);
    text(type);
  }

  void end() {
    const std::size_t type = length_ + 4;
    place(length_, static_cast<std::uint32_t>(bytes.size() - type - 4));
    number(crc32_gzip_refl(0, bytes.data() + type, bytes.size() - type));
  }

  void byte(int value) { bytes.push_back(static_cast<std::uint8_t>(value)); }
  void text(std::string_view value) { bytes.insert(bytes.end(), value.begin(), value.end()); }
  void number(std::uint32_t value) {
    bytes.resize(bytes.size() + 4);
    place(bytes.size() - 4, value);
  }

  std::vector<std::uint8_t> bytes;

 private:
  void place(std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) {
      bytes[at + i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
    }
  }

  std::size_t length_ = 0;
};

enum ColorType { palette = 3, rgba = 6 };

// Alphas are listed up to the last colour that is not opaque.
std::size_t translucentEntries(std::span<const ui::Rgba> colors) {
  std::size_t count = colors.size();
  while (count > 0 && colors[count - 1].alpha == 255) {
    --count;
  }
  return count;
}

}  // namespace

// The lowest level: the next one makes files a sixth smaller, but mixes a remainder of its state's
// address into the search for matches, so that the same rows now and then come out in other bytes.
struct PngEncoder::Compressor {
  // Appends the zlib stream of the rows.
  void compress(const PixelRows& rows, std::vector<std::uint8_t>& out) {
    isal_deflate_init(&stream);
    stream.gzip_flag = IGZIP_ZLIB;
    stream.end_of_stream = 1;
    stream.flush = NO_FLUSH;
    // The library reads only, though it does not promise so.
    stream.next_in = const_cast<std::uint8_t*>(rows.data);
    stream.avail_in =
        static_cast<std::uint32_t>(rows.stride() * static_cast<std::size_t>(rows.height));
    std::size_t used = out.size();
    while (stream.internal_state.state != ZSTATE_END) {
      out.resize(std::max(2 * used, used + roomAtFirst));
      stream.next_out = out.data() + used;
      stream.avail_out = static_cast<std::uint32_t>(out.size() - used);
      isal_deflate(&stream);
      used = out.size() - stream.avail_out;
    }
    out.resize(used);
  }

  static constexpr std::size_t roomAtFirst = std::size_t{1} << 15;
  isal_zstream stream{};
};

PngEncoder::PngEncoder() : compressor_(std::make_unique<Compressor>()) {}

PngEncoder::~PngEncoder() = default;

std::vector<std::uint8_t> PngEncoder::encode(const PixelRows& rows) {
  Chunks png;
  png.bytes.reserve(32768);
  png.begin("IHDR");
  png.number(static_cast<std::uint32_t>(rows.width));
  png.number(static_cast<std::uint32_t>(rows.height));
  for (const int value : {8, static_cast<int>(rows.palette.empty() ? rgba : palette), 0, 0, 0}) {
    png.byte(value);
  }
  png.end();
  png.begin("sRGB");
  png.byte(0);  // perceptual
  png.end();
  if (!rows.palette.empty()) {
    png.begin("PLTE");
    for (const ui::Rgba color : rows.palette) {
      for (const int component : {color.red, color.green, color.blue}) {
        png.byte(component);
      }
    }
    png.end();
    if (const std::size_t count = translucentEntries(rows.palette); count > 0) {
      png.begin("tRNS");
      for (const ui::Rgba color : rows.palette.first(count)) {
        png.byte(color.alpha);
      }
      png.end();
    }
  }
  png.begin("IDAT");
  compressor_->compress(rows, png.bytes);
  png.end();
  png.begin("IEND");
  png.end();
  return std::move(png.bytes);
}

}  // namespace quillpad::drawing
