#include "home/extension/FileWatch.h"

#include <array>
#include <cstdint>
#include <list>
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
  if (!file_.empty()) {
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

// The folders of the file and of each link on the way to it, or the last folder that is there. What
// was made between two steps would go unseen, so it looks again until it finds the same.
void FileWatch::watchFolders() {
  for (std::optional<std::set<int>> last; last != watches_;) {
    last = std::exchange(watches_, {});
    std::filesystem::path folder;
    std::list<std::filesystem::path> ahead(file_.begin(), file_.end());
    for (int links = 0; !ahead.empty() && links < maxLinks;) {
      const std::filesystem::path next = folder / ahead.front();
      ahead.pop_front();
      std::error_code noLink;
      const std::filesystem::path target = std::filesystem::read_symlink(next, noLink);
      if (!noLink) {
        ++links;
        watch(folder);
        ahead.insert(ahead.begin(), target.begin(), target.end());
      } else if (ahead.empty() || noLink == std::errc::no_such_file_or_directory) {
        watch(folder);
        break;
      } else {
        folder = next;
      }
    }
    for (const int watch : *last) {
      if (!watches_.contains(watch)) {
        ::inotify_rm_watch(events_.get(), watch);
      }
    }
  }
}

void FileWatch::watch(const std::filesystem::path& folder) {
  watches_.insert(::inotify_add_watch(events_.get(), folder.c_str(), anyChange));
}

}  // namespace quillpad::home
