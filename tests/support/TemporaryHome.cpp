#include "support/TemporaryHome.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>

namespace support {

namespace {

constexpr const char* placeVariable = "QUILLPAD_TEST_FOLDER";

std::filesystem::path placeForFolders() {
  const char* parents = std::getenv(placeVariable);
  return parents == nullptr ? std::filesystem::temp_directory_path() : parents;
}

std::string madeFolder() {
  static const std::filesystem::path place = placeForFolders();
  std::string pattern = (place / "quillpad-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    std::perror("a temporary folder cannot be made");
    std::abort();
  }
  return pattern;
}

}  // namespace

TemporaryFolder::TemporaryFolder()
    : path_(madeFolder()), placeForChildren_(placeVariable, path_.string()) {}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

TemporaryHome::TemporaryHome()
    : home_("HOME", path().string()),
      data_("XDG_DATA_HOME", (path() / ".local/share").string()),
      state_("XDG_STATE_HOME", (path() / ".local/state").string()),
      config_("XDG_CONFIG_HOME", (path() / ".config").string()) {}

}  // namespace support
