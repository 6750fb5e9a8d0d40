#include "home/extension/FileWatch.h"

#include <array>
#include <cstdint>
#include <optional>
#include <sys/inotify.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace quillpad::home {
namespace {

constexpr int maxLinks = 40;  // as many as the kernel follows

constexpr std::uint32_t anyChange =
    IN_CREATE | IN_CLOSE_WRITE | IN_MOVE | IN_DELETE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

}  // namespace

FileWatch::FileWatch(std::filesystem::path file) : file_(std::move(file)) {
  if (file_.has_parent_path()) {
    events_ = FileDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    watchFolders();
  }
}

bool FileWatch::takeChange() {
  std::array<char, 4096> events{};
  bool changed = false;
  while (events_ && ::read(events_.get(), events.data(), events.size()) > 0) {
    changed = true;
  }
  if (changed) {
    watchFolders();
  }
  return changed;
}

// The folders of the file and of what it links to. What was made between two steps would go unseen,
// so it looks again until it finds the same.
void FileWatch::watchFolders() {
  for (std::optional<std::set<int>> last; last != watches_;) {
    last = std::exchange(watches_, {});
    std::filesystem::path file = file_;
    std::error_code noLink;
    for (int links = 0; links <= maxLinks && !noLink; ++links) {
      watches_.insert(watchNearestFolder(file.parent_path()));
      file = file.parent_path() / std::filesystem::read_symlink(file, noLink);
    }
    for (const int watch : *last) {
      if (!watches_.contains(watch)) {
        ::inotify_rm_watch(events_.get(), watch);
      }
    }
  }
}

// The folder or the nearest one above it that is there.
int FileWatch::watchNearestFolder(std::filesystem::path folder) const {
  int watch = ::inotify_add_watch(events_.get(), folder.c_str(), anyChange);
  while (watch < 0 && folder.has_relative_path()) {
    folder = folder.parent_path();
    watch = ::inotify_add_watch(events_.get(), folder.c_str(), anyChange);
  }
  return watch;
}

}  // namespace quillpad::home
