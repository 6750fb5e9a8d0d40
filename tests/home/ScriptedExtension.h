// Extensions as shell scripts: they do what no product would. Their end of the channel is
// descriptor 3.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>

#include "fixtures/TemporaryHome.h"

namespace quillpad::home {

class ScriptedExtension {
 public:
  explicit ScriptedExtension(const std::string& commands) { play(commands); }

  // From the next start on it does this.
  void play(const std::string& commands) const {
    const auto next = folder_.path() / "next";
    std::ofstream(next) << "#!/bin/sh\n" << commands << '\n';
    ::chmod(next.c_str(), 0755);
    std::filesystem::rename(next, path());
  }

  std::filesystem::path path() const { return folder_.path() / "extension"; }
  const std::filesystem::path& folder() const { return folder_.path(); }

 private:
  fixtures::TemporaryFolder folder_;
};

}  // namespace quillpad::home
