// A folder of recorded pictures: what became of one since it was recorded, and keeping the new one.
// A picture whose pixels are the same keeps its file. Callable from any thread.
#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "home/commands/Failure.h"
#include "home/commands/GalleryPlan.h"
#include "home/commands/PictureDifference.h"

namespace quillpad::home {

class GalleryFolder {
 public:
  enum class Status { unchanged, changed, isNew };

  // What became of a picture; what it was and how it differs where it was changed.
  struct Comparison {
    Status status = Status::unchanged;
    std::string before{};
    PictureDifference difference{};
  };

  explicit GalleryFolder(std::filesystem::path folder) : folder_(std::move(folder)) {}

  const std::filesystem::path& path() const { return folder_; }

  Done create() const;

  // How the PNG file differs from the recorded one of the name.
  std::expected<Comparison, Failure> compare(
      const std::string& name, std::string_view png, const drawing::Tolerance& tolerance) const;

  // The recorded picture, as bytes.
  std::expected<std::string, Failure> read(const std::string& name) const;

  Done write(const std::string& name, std::string_view bytes) const;
  Done remove(const std::string& name) const;

  // The names of the pictures, in order.
  std::expected<std::vector<std::string>, Failure> pictures() const;

  // What it was made from; nothing where it does not say so.
  std::expected<std::optional<GallerySettings>, Failure> settings() const;
  Done writeSettings(const GallerySettings& settings) const;

 private:
  std::filesystem::path folder_;
};

}  // namespace quillpad::home
