#include "home/extension/FileWatch.h"

#include <array>
#include <cstdint>
#include <sys/inotify.h>
#include <unistd.h>

namespace quillpad::home {
namespace {

constexpr std::uint32_t anyChange =
    IN_CREATE | IN_CLOSE_WRITE | IN_MOVE | IN_DELETE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

}  // namespace

FileWatch::FileWatch(const std::filesystem::path& file) : folder_(file.parent_path()) {
  if (!folder_.empty()) {
    events_ = FileDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    watchNearestFolder();
  }
}

bool FileWatch::takeChange() {
  std::array<char, 4096> events{};
  bool changed = false;
  while (events_ && ::read(events_.get(), events.data(), events.size()) > 0) {
    changed = true;
  }
  if (changed) {
    watchNearestFolder();
  }
  return changed;
}

// The file's own folder or the nearest one above it that is there. What was made between the two
// steps would go unseen, so it looks again until it finds the same.
void FileWatch::watchNearestFolder() {
  for (std::filesystem::path last;;) {
    std::filesystem::path folder = folder_;
    int watch = ::inotify_add_watch(events_.get(), folder.c_str(), anyChange);
    while (watch < 0 && folder.has_relative_path()) {
      folder = folder.parent_path();
      watch = ::inotify_add_watch(events_.get(), folder.c_str(), anyChange);
    }
    if (watch != watch_ && watch_ >= 0) {
      ::inotify_rm_watch(events_.get(), watch_);
    }
    watch_ = watch;
    if (folder == last) {
      return;
    }
    last = std::move(folder);
  }
}

}  // namespace quillpad::home
