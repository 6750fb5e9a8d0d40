#include "platform/foundation/Bundle.h"

#include <cstddef>

#include "platform/foundation/Locale.h"
#include "platform/foundation/StringsTable.h"
#include "platform/foundation/WholeFile.h"

namespace quillpad {
namespace {

constexpr std::size_t largestTable = std::size_t{1} << 20;

std::filesystem::path folderOfProgram() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

}  // namespace

const Bundle& Bundle::main() {
  static const Bundle mainBundle(folderOfProgram().parent_path() / "share" / "quillpad-widgets");
  return mainBundle;
}

std::string Bundle::localizedString(std::string_view key, const std::string& locale) const {
  for (const std::string& language : languagesOf(locale)) {
    const auto bytes =
        readWholeFile(folder_ / (language + ".lproj") / "Localizable.strings", largestTable);
    if (!bytes) {
      continue;
    }
    const std::optional<Dictionary> table = readStringsTable(*bytes);
    if (!table) {
      continue;
    }
    const Value* text = table->find(key);
    return text == nullptr ? std::string(key) : *text->as<std::string>();
  }
  return std::string(key);
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
