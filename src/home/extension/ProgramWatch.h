// Watches the extension's program and the resources beside it, and reports when they were replaced:
// by a rename or by writing, but not before all is written. Driven by its owner's poll loop; where
// the system cannot watch, it reports nothing. The program may be a link that is swapped, its
// folder may not. Belongs to one thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/inotify.h>
#include <vector>

#include "home/extension/Moment.h"
#include "home/extension/ReplacementRule.h"
#include "platform/os/FileDescriptor.h"

namespace quillpad::home {

class ProgramWatch {
 public:
  // Folders of resources are watched with their subfolders, whatever lies in them.
  ProgramWatch(std::filesystem::path program, std::vector<std::filesystem::path> resources);

  pollfd descriptor() const { return {events_.get(), POLLIN, 0}; }
  std::optional<Uptime> nextDeadline() const { return rule_.due(); }

  // Takes what has come; whether the program or a resource is another one than before. To be called
  // after each poll.
  bool run(Uptime now);

 private:
  void watch(const std::filesystem::path& folder);
  void watchTarget();
  void watchResources();
  void take(Uptime now, const inotify_event& event, const std::string& name);
  // What distinguishes one state of the program from another.
  std::string identity() const;

  std::filesystem::path program_;
  std::vector<std::filesystem::path> resources_;
  FileDescriptor events_;
  std::map<int, std::filesystem::path> folders_;  // by the watch's number
  std::string identity_;
  bool resourceChanged_ = false;
  ReplacementRule rule_;
};

}  // namespace quillpad::home
