#include "support/TemporaryHome.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>

namespace support {

TemporaryFolder::TemporaryFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "quillpad-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    std::perror("a temporary folder cannot be made");
    std::abort();
  }
  path_ = pattern;
}

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
