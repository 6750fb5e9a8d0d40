#include "platform/foundation/ZipWriter.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace quillpad {
namespace {

constexpr std::size_t maxFiles = 65'534;
constexpr std::size_t maxNameBytes = 1000;
constexpr std::size_t localHeadBytes = 30;
constexpr std::size_t entryBytes = 46;
constexpr std::size_t endBytes = 22;

constexpr std::array<std::uint32_t, 256> checksumTable = [] {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
    std::uint32_t value = byte;
    for (int bit = 0; bit < 8; ++bit) {
      value = (value >> 1U) ^ ((value & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    table[byte] = value;
  }
  return table;
}();

std::uint32_t checksumOf(std::string_view bytes) {
  std::uint32_t value = ~0U;
  for (const char byte : bytes) {
    value = (value >> 8U) ^ checksumTable[(value ^ static_cast<unsigned char>(byte)) & 0xFFU];
  }
  return ~value;
}

// Numbers have their lowest byte first.
class Record {
 public:
  Record& two(std::uint32_t value) { return number(value, 2); }
  Record& four(std::uint32_t value) { return number(value, 4); }
  Record& text(std::string_view text) {
    bytes_ += text;
    return *this;
  }

  // What a file's head and its entry in the directory have in common: version 2.0, names in UTF-8,
  // stored, a time that is the same for all, so that equal files make equal archives.
  Record& file(std::uint32_t checksum, std::uint32_t size, std::size_t nameBytes) {
    two(20).two(1U << 11U).two(0).two(0).two(1U << 5U | 1U);
    four(checksum).four(size).four(size);
    return two(static_cast<std::uint32_t>(nameBytes)).two(0);
  }

  std::string take() { return std::move(bytes_); }

 private:
  Record& number(std::uint32_t value, int bytes) {
    for (; bytes > 0; --bytes, value >>= 8U) {
      bytes_ += static_cast<char>(value & 0xFFU);
    }
    return *this;
  }

  std::string bytes_;
};

}  // namespace

std::optional<std::string> ZipWriter::add(std::string name, std::string_view bytes) {
  const std::uint64_t position = position_ + localHeadBytes + name.size() + bytes.size();
  const std::uint64_t directorySize = directorySize_ + entryBytes + name.size();
  if (files_.size() == maxFiles || name.size() > maxNameBytes ||
      position + directorySize + endBytes > std::numeric_limits<std::uint32_t>::max()) {
    return std::nullopt;
  }
  File file{
      .name = std::move(name),
      .checksum = checksumOf(bytes),
      .size = static_cast<std::uint32_t>(bytes.size()),
      .offset = static_cast<std::uint32_t>(position_)};
  Record head;
  head.text("PK\3\4").file(file.checksum, file.size, file.name.size()).text(file.name);
  files_.push_back(std::move(file));
  position_ = position;
  directorySize_ = directorySize;
  return head.take();
}

std::string ZipWriter::end() {
  constexpr std::uint32_t madeOnUnix = 3U << 8U | 20U;
  constexpr std::uint32_t readableFile = 0100644U << 16U;
  std::ranges::sort(files_, {}, &File::name);
  Record directory;
  for (const File& file : files_) {
    directory.text("PK\1\2").two(madeOnUnix).file(file.checksum, file.size, file.name.size());
    directory.two(0).two(0).two(0).four(readableFile).four(file.offset).text(file.name);
  }
  const auto count = static_cast<std::uint32_t>(files_.size());
  directory.text("PK\5\6").two(0).two(0).two(count).two(count);
  directory.four(static_cast<std::uint32_t>(directorySize_));
  directory.four(static_cast<std::uint32_t>(position_)).two(0);
  return directory.take();
}

}  // namespace quillpad
