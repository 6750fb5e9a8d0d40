#include "platform/foundation/Bundle.h"

#include "platform/foundation/Locale.h"

namespace quillpad {
namespace {

std::filesystem::path thisProgram() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error);
}

}  // namespace

const Bundle& Bundle::main() {
  static const Bundle mainBundle = ofProgram(thisProgram());
  return mainBundle;
}

Bundle Bundle::ofProgram(const std::filesystem::path& program) {
  return Bundle(program.parent_path().parent_path() / "share" / "quillpad-widgets");
}

std::optional<std::string> Bundle::localization(const std::string& locale) const {
  for (const std::string& language : languagesOf(locale)) {
    std::error_code error;
    if (std::filesystem::is_directory(folder_ / (language + ".lproj"), error)) {
      return language;
    }
  }
  return std::nullopt;
}

std::optional<std::filesystem::path> Bundle::picture(std::string_view name, int scale) const {
  if (name.empty() || name.contains('/') || name.contains('\0')) {
    return std::nullopt;
  }
  const std::string suffix = scale == 1 ? "" : "@" + std::to_string(scale) + "x";
  std::filesystem::path file = folder_ / (std::string(name) + suffix + ".png");
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) {
    return std::nullopt;
  }
  return file;
}

}  // namespace quillpad
