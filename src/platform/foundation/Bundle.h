// The resources that are built beside the programs. Immutable after it is made; the main bundle is
// callable from any thread.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quillpad {

class Bundle {
 public:
  // The bundle of this program: share/quillpad-widgets in the folder above the one that the program
  // lies in.
  static const Bundle& main();

  // The same of another program.
  static Bundle ofProgram(const std::filesystem::path& program);

  explicit Bundle(std::filesystem::path folder) : folder_(std::move(folder)) {}

  const std::filesystem::path& folder() const { return folder_; }

  // The language that the locale gets of those that the bundle is translated into; nothing where it
  // gets the keys themselves.
  std::optional<std::string> localization(const std::string& locale) const;

  // The file of a picture at a scale of 1 to 3 ("Graph@2x.png"), or nothing if there is no such
  // file. A name with a slash names no picture.
  std::optional<std::filesystem::path> picture(std::string_view name, int scale) const;

 private:
  std::filesystem::path folder_;
};

}  // namespace quillpad
