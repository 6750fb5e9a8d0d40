// Tells that a file may have changed, also one that is still to come, in folders that are still to
// come. Belongs to one thread.
#pragma once

#include <filesystem>

#include "platform/foundation/FileDescriptor.h"

namespace quillpad::home {

class FileWatch {
 public:
  // An empty path: nothing is watched.
  explicit FileWatch(const std::filesystem::path& file);

  // Readable once the file may have changed; -1 where nothing is watched.
  int descriptor() const { return events_.get(); }

  // Whether it may have changed since the last call.
  bool takeChange();

 private:
  void watchNearestFolder();

  std::filesystem::path folder_;
  FileDescriptor events_;
  int watch_ = -1;
};

}  // namespace quillpad::home
