#include "platform/drawing/Deflate.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <isa-l/igzip_lib.h>
#include <span>

namespace drawing {

namespace {

constexpr std::size_t longestMatch = 258;
constexpr std::size_t farthest = 32768;
constexpr int endOfBlock = 256;
constexpr std::uint32_t adlerModulus = 65521;

struct Code {
  std::uint32_t bits = 0;
  unsigned count = 0;

  constexpr Code then(Code next) const { return {bits | next.bits << count, count + next.count}; }
};

// Huffman codes go into the stream with their first bit lowest.
constexpr Code reversed(std::uint32_t bits, unsigned count) {
  std::uint32_t result = 0;
  for (unsigned i = 0; i < count; ++i) result |= (bits >> i & 1) << (count - 1 - i);
  return {result, count};
}

// The fixed codes of the format.
constexpr Code symbolCode(int symbol) {
  const auto value = static_cast<std::uint32_t>(symbol);
  if (symbol < 144) return reversed(0x30 + value, 8);
  if (symbol < 256) return reversed(0x190 + value - 144, 9);
  if (symbol < 280) return reversed(value - 256, 7);
  return reversed(0xC0 + value - 280, 8);
}

// Lengths and distances are written as the class that they fall into and the rest as plain bits.
// Classes come in groups of `perGroup`, each group with one more plain bit than the one before.
constexpr Code lengthCode(std::size_t length) {
  if (length == longestMatch) return symbolCode(285);
  const auto rest = static_cast<std::uint32_t>(length - 3);
  const unsigned extra = rest < 8 ? 0 : static_cast<unsigned>(std::bit_width(rest)) - 3;
  const int symbol = static_cast<int>(257 + 4 * extra + (rest >> extra));
  return symbolCode(symbol).then({rest & ((1U << extra) - 1), extra});
}

constexpr Code distanceCode(std::size_t distance) {
  const auto rest = static_cast<std::uint32_t>(distance - 1);
  const unsigned extra = rest < 4 ? 0 : static_cast<unsigned>(std::bit_width(rest)) - 2;
  return reversed(2 * extra + (rest >> extra), 5).then({rest & ((1U << extra) - 1), extra});
}

template <std::size_t size>
constexpr std::array<Code, size> table(auto code) {
  std::array<Code, size> codes{};
  for (std::size_t i = 0; i < size; ++i) codes[i] = code(i);
  return codes;
}

constexpr auto literals =
    table<256>([](std::size_t value) { return symbolCode(static_cast<int>(value)); });
constexpr auto lengths = table<longestMatch + 1>(
    [](std::size_t length) { return length < 3 ? Code{} : lengthCode(length); });

class BitStream {
 public:
  explicit BitStream(std::vector<std::uint8_t>& out) : out_(out), used_(out.size()) {}

  // Room for the codes of so many bytes; a byte takes 9 bits at most, a match less than its bytes.
  void reserve(std::size_t bytes) {
    const std::size_t needed = used_ + bytes + bytes / 4 + 64;
    if (needed > out_.size()) out_.resize(std::max(needed, 2 * out_.size()));
  }

  void put(Code code) {
    pending_ |= std::uint64_t{code.bits} << count_;
    count_ += code.count;
    std::memcpy(out_.data() + used_, &pending_, sizeof pending_);
    used_ += count_ / 8;
    pending_ >>= count_ & ~7U;
    count_ %= 8;
  }

  void finish(std::uint32_t checksum) {
    put({0, (8 - count_) % 8});
    for (const int shift : {24, 16, 8, 0})
      out_[used_++] = static_cast<std::uint8_t>(checksum >> shift);
    out_.resize(used_);
  }

 private:
  static_assert(std::endian::native == std::endian::little);

  std::vector<std::uint8_t>& out_;
  std::size_t used_;
  std::uint64_t pending_ = 0;
  unsigned count_ = 0;
};

// How many bytes from `a` on equal those from `b` on.
std::size_t equalBytes(const std::uint8_t* a, const std::uint8_t* b, std::size_t most) {
  std::size_t count = 0;
  while (count < most) {
    std::uint64_t left = 0;
    std::uint64_t right = 0;
    std::memcpy(&left, a + count, sizeof left);
    std::memcpy(&right, b + count, sizeof right);
    if (left != right) {
      return std::min(most, count + static_cast<std::size_t>(std::countr_zero(left ^ right)) / 8);
    }
    count += sizeof left;
  }
  return most;
}

class RowDeflater {
 public:
  RowDeflater(const PixelRows& rows, std::vector<std::uint8_t>& out)
      : stride_(rows.stride()),
        pixel_(static_cast<std::size_t>(rows.bytesPerPixel)),
        leftCode_(distanceCode(pixel_)),
        aboveCode_(stride_ <= farthest ? distanceCode(stride_) : Code{}),
        bits_(out) {
    bits_.reserve(64);
    bits_.put({0x0178, 16});  // zlib, fastest
    bits_.put({0b011, 3});    // the last block, fixed codes
  }

  // One row; `first` where no row stands above it.
  void row(const std::uint8_t* bytes, bool first) {
    bits_.reserve(stride_);
    adler_ = isal_adler32(adler_, bytes, stride_);
    const bool above = !first && stride_ <= farthest;
    for (std::size_t at = 0; at < stride_;) {
      const std::uint8_t* here = bytes + at;
      const std::size_t rest = stride_ - at;
      const bool hasLeft = !first || at >= pixel_;
      const std::size_t left = hasLeft ? equalBytes(here, here - pixel_, rest) : 0;
      const std::size_t up = above && left < rest ? equalBytes(here, here - stride_, rest) : 0;
      if (left >= 3 && left + 1 >= up) {
        match(left, leftCode_);
        at += left;
      } else if (up >= 4) {
        match(up, aboveCode_);
        at += up;
      } else {
        bits_.put(literals[*here]);
        ++at;
      }
    }
  }

  // Rows of nothing but zeros. The checksum's first half stays, its second grows by the first for
  // every byte.
  void blankRows(std::size_t count) {
    const std::size_t bytes = count * stride_;
    const std::uint32_t low = adler_ & 0xFFFF;
    const auto added = static_cast<std::uint32_t>(bytes % adlerModulus * low % adlerModulus);
    adler_ = ((adler_ >> 16) + added) % adlerModulus << 16 | low;
    bits_.reserve(bytes / 64);
    bits_.put(literals[0]);  // the byte before may not be a zero
    if (bytes > 3) {
      match(bytes - 1, distanceCode(1));
    } else {
      for (std::size_t i = 1; i < bytes; ++i) bits_.put(literals[0]);
    }
  }

  void finish() {
    bits_.put(symbolCode(endOfBlock));
    bits_.finish(adler_);
  }

 private:
  void match(std::size_t length, Code distance) {
    for (; length > longestMatch + 2; length -= longestMatch) {
      bits_.put(lengths[longestMatch].then(distance));
    }
    if (length > longestMatch) {  // what would be left must be long enough to be a match
      bits_.put(lengths[length - 3].then(distance));
      length = 3;
    }
    bits_.put(lengths[length].then(distance));
  }

  std::size_t stride_;
  std::size_t pixel_;
  Code leftCode_;
  Code aboveCode_;
  BitStream bits_;
  std::uint32_t adler_ = 1;
};

}  // namespace

void deflateRows(const PixelRows& rows, std::vector<std::uint8_t>& out) {
  RowDeflater deflater(rows, out);
  const std::size_t stride = rows.stride();
  const auto height = static_cast<std::size_t>(rows.height);
  const auto blank = [&](std::size_t y) { return !rows.marked.empty() && rows.marked[y] == 0; };
  for (std::size_t y = 0; y < height;) {
    std::size_t end = y;
    while (end < height && blank(end)) ++end;
    if (end > y) {
      deflater.blankRows(end - y);
      y = end;
    } else {
      deflater.row(rows.data + y * stride, y == 0);
      ++y;
    }
  }
  deflater.finish();
}

}  // namespace drawing
