// Extensions as shell scripts: they do what no product would. Their end of the channel is
// descriptor 3.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>

#include "fixtures/TemporaryHome.h"

namespace quillpad::home {

inline const std::string anEntry = R"({"date":"2026-03-07T09:05:03.250Z","data":"x"})";
inline const std::string aView = R"({"view":{"type":"spacer"}})";

// Commands that send an answer, and that read a request before.
inline std::string reply(int id, const std::string& result) {
  return "echo '{\"id\":" + std::to_string(id) + ",\"result\":" + result + "}' >&3; ";
}
inline std::string answers(int id, const std::string& result) {
  return "read r <&3; " + reply(id, result);
}

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
