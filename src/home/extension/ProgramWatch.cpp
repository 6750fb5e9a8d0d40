#include "home/extension/ProgramWatch.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace quillpad::home {
namespace {

constexpr std::size_t maxFolders = 200;

constexpr std::uint32_t watchedEvents = IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_MOVED_TO |
                                        IN_MOVED_FROM | IN_DELETE | IN_ATTRIB | IN_ONLYDIR;

// A link, hard or symbolic, is made as a whole, and nobody closes it.
bool isLink(const std::filesystem::path& file) {
  struct stat status{};
  return ::lstat(file.c_str(), &status) == 0 && (status.st_nlink > 1 || S_ISLNK(status.st_mode));
}

FileEvent meaningOf(std::uint32_t mask, const std::filesystem::path& file) {
  if ((mask & (IN_CLOSE_WRITE | IN_MOVED_TO)) != 0) {
    return FileEvent::done;
  }
  if ((mask & (IN_DELETE | IN_MOVED_FROM)) != 0) {
    return FileEvent::gone;
  }
  if ((mask & IN_ATTRIB) != 0) {
    return FileEvent::touched;
  }
  return (mask & IN_CREATE) != 0 && isLink(file) ? FileEvent::done : FileEvent::begun;
}

}  // namespace

ProgramWatch::ProgramWatch(
    std::filesystem::path program, std::vector<std::filesystem::path> resources)
    : program_(std::move(program)),
      resources_(std::move(resources)),
      events_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
  watch(program_.has_parent_path() ? program_.parent_path() : ".");
  watchTarget();
  watchResources();
  identity_ = identity();
}

void ProgramWatch::watch(const std::filesystem::path& folder) {
  if (const int number = ::inotify_add_watch(events_.get(), folder.c_str(), watchedEvents);
      number >= 0) {
    folders_.try_emplace(number, folder);
  }
}

void ProgramWatch::watchTarget() {
  std::error_code error;
  if (const auto target = std::filesystem::canonical(program_, error); !error) {
    watch(target.parent_path());
  }
}

void ProgramWatch::watchResources() {
  for (const std::filesystem::path& folder : resources_) {
    watch(folder);
    std::error_code error;
    for (std::filesystem::recursive_directory_iterator entry(folder, error), end;
         !error && entry != end;
         entry.increment(error)) {
      if (entry->is_directory(error) && folders_.size() < maxFolders) {
        watch(entry->path());
      }
    }
  }
}

bool ProgramWatch::run(Uptime now) {
  alignas(inotify_event) std::array<char, 16384> buffer{};
  for (ssize_t count = 0; (count = ::read(events_.get(), buffer.data(), buffer.size())) > 0;) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(count);) {
      inotify_event event{};
      std::memcpy(&event, buffer.data() + at, sizeof event);
      take(now, event, event.len == 0 ? "" : buffer.data() + at + sizeof event);
      at += sizeof event + event.len;
    }
  }
  if (!rule_.takeReplaced(now)) {
    return false;
  }
  watchTarget();
  const std::string before = std::exchange(identity_, identity());
  return std::exchange(resourceChanged_, false) || (identity_ != before && !identity_.empty());
}

void ProgramWatch::take(Uptime now, const inotify_event& event, const std::string& name) {
  if ((event.mask & IN_Q_OVERFLOW) != 0) {  // whatever was missed
    resourceChanged_ = true;
    rule_.happened(now, "", FileEvent::done);
    return;
  }
  const auto folder = folders_.find(event.wd);
  if (folder == folders_.end() || name.empty() || name.starts_with('.')) {
    return;
  }
  const std::filesystem::path file = folder->second / name;
  const bool isResource = std::ranges::any_of(resources_, [&](const auto& resources) {
    return std::ranges::mismatch(resources, file).in1 == resources.end();
  });
  std::error_code error;
  if ((event.mask & IN_ISDIR) != 0) {
    watchResources();
  } else if (isResource) {
    const FileEvent meaning = meaningOf(event.mask, file);
    resourceChanged_ = resourceChanged_ || meaning == FileEvent::done;
    rule_.happened(now, file, meaning);
  } else if (
      name == program_.filename() ||
      name == std::filesystem::canonical(program_, error).filename()) {
    // One name for the link and its target: what a link led to before is not waited for.
    rule_.happened(now, program_, meaningOf(event.mask, file));
  }
}

std::string ProgramWatch::identity() const {
  struct stat status{};
  if (::stat(program_.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return "";
  }
  std::string text;
  // The time of the last change, which unlike that of writing nobody sets.
  for (const auto part :
       {static_cast<std::int64_t>(status.st_dev),
        static_cast<std::int64_t>(status.st_ino),
        static_cast<std::int64_t>(status.st_size),
        static_cast<std::int64_t>(status.st_ctim.tv_sec),
        static_cast<std::int64_t>(status.st_ctim.tv_nsec)}) {
    text += std::to_string(part) + " ";
  }
  return text;
}

}  // namespace quillpad::home
