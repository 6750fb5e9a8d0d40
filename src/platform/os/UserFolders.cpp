#include "platform/os/UserFolders.h"

#include <cerrno>
#include <cstdlib>
#include <sys/stat.h>

namespace quillpad {
namespace {

std::optional<std::filesystem::path> userFolder(const char* variable, const char* belowHome) {
  const char* folder = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe)
  if (folder != nullptr && *folder == '/') {
    return std::filesystem::path(folder) / "quillpad";
  }
  const char* home = std::getenv("HOME");  // NOLINT(concurrency-mt-unsafe)
  if (home == nullptr || *home != '/') {
    return std::nullopt;
  }
  return std::filesystem::path(home) / belowHome / "quillpad";
}

}  // namespace

std::optional<std::filesystem::path> userDataFolder() {
  return userFolder("XDG_DATA_HOME", ".local/share");
}

std::optional<std::filesystem::path> userStateFolder() {
  return userFolder("XDG_STATE_HOME", ".local/state");
}

std::error_code makePrivateFolders(const std::filesystem::path& folder) {
  std::filesystem::path made;
  for (const std::filesystem::path& part : folder) {
    made /= part;
    if (mkdir(made.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
      return {errno, std::system_category()};
    }
  }
  return {};
}

}  // namespace quillpad
