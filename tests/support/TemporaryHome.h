// An empty home folder for a test: HOME and the XDG folders point into it while it lives, and it is
// removed with everything in it.
#pragma once

#include <filesystem>

#include "support/ScopedVariable.h"

namespace support {

// A new empty folder, removed with its contents in the end. A child process makes its own inside of
// it, so that what a child leaves behind that ends on purpose goes with it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
  ScopedVariable placeForChildren_;
};

class TemporaryHome {
 public:
  TemporaryHome();

  const std::filesystem::path& path() const { return folder_.path(); }

 private:
  TemporaryFolder folder_;
  ScopedVariable home_;
  ScopedVariable data_;
  ScopedVariable state_;
  ScopedVariable config_;
};

}  // namespace support
