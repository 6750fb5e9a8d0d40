#include "platform/os/FolderListing.h"

#include <algorithm>

namespace quillpad {

std::expected<std::vector<std::string>, std::error_code> stemsIn(
    const std::filesystem::path& folder, std::string_view extension) {
  std::vector<std::string> stems;
  std::error_code error;
  for (std::filesystem::directory_iterator file(folder, error), end; !error && file != end;
       file.increment(error)) {
    if (file->path().extension() == extension) {
      stems.push_back(file->path().stem());
    }
  }
  if (error) {
    return std::unexpected(error);
  }
  std::ranges::sort(stems);
  return stems;
}

}  // namespace quillpad
