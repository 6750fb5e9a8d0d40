// Tells that a file may have changed, also one that is still to come, in folders that are still to
// come, and one that links lead to, its folders' links too. Belongs to one thread.
#pragma once

#include <filesystem>
#include <set>

#include "platform/os/FileDescriptor.h"

namespace quillpad::home {

class FileWatch {
 public:
  // An absolute path; an empty one: nothing is watched.
  explicit FileWatch(std::filesystem::path file);

  // Readable once the file may have changed; -1 where nothing is watched.
  int descriptor() const { return events_.get(); }

  // Whether it may have changed since the last call.
  bool takeChange();

 private:
  void watchFolders();
  void watch(const std::filesystem::path& folder);

  std::filesystem::path file_;
  FileDescriptor events_;
  std::set<int> watches_;
};

}  // namespace quillpad::home
