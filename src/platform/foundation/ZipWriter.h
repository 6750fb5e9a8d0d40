// A zip archive as it is written, for files that are compressed already: each is stored as it is.
// Only the files' names are kept, so an archive may be larger than memory. Belongs to one thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpad {

class ZipWriter {
 public:
  // What makes a file of the archive: its head, to be followed by the bytes themselves. The name is
  // UTF-8. Nothing where the archive would hold 65,535 files or reach 4 GiB.
  std::optional<std::string> add(std::string name, std::string_view bytes);

  // What ends the archive: its directory, in the order of the names.
  std::string end();

 private:
  struct File {
    std::string name;
    std::uint32_t checksum = 0;
    std::uint32_t size = 0;
    std::uint32_t offset = 0;
  };

  std::vector<File> files_;
  std::uint64_t position_ = 0;
  std::uint64_t directorySize_ = 0;
};

}  // namespace quillpad
