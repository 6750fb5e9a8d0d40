// What an extension's process may do, whatever program it is: read what programs need to run, its
// own folder, the trusted certificates and the application's data; write nothing; take a part of
// the machine. Made before the process by any thread, and entered by the process itself.
#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <sys/types.h>
#include <vector>

#include "platform/os/Landlock.h"

namespace quillpad::home {

class Confinement {
 public:
  // The most that the process maps. The sanitizers map more than there is.
  static constexpr rlim_t maxAddressSpace = rlim_t{1024} * 1024 * 1024;
  static constexpr rlim_t maxData = rlim_t{256} * 1024 * 1024;
  static constexpr rlim_t maxDescriptors = 256;
  // How many processes there may be beyond those of the machine when it was started.
  static constexpr rlim_t maxMoreProcesses = 512;
  // A limit that Linux still keeps but no longer enforces: whoever descends from a confined process
  // has a lower one than this process, and cannot raise it.
  static constexpr auto mark = RLIMIT_LOCKS;

  // What confines the program; a sentence for a person where this machine cannot confine it now.
  static std::expected<Confinement, std::string> of(const std::filesystem::path& program);

  // Confines the calling process for good; false, with errno, where it cannot. Only system calls.
  bool enter() const;

  // Whether a place that may be read has come or was replaced since, which the process does not
  // see.
  bool isStale() const;

 private:
  struct Place {
    std::filesystem::path path;
    dev_t device = 0;
    ino_t file = 0;  // 0 where there is none
  };

  explicit Confinement(LandlockRuleset files);

  LandlockRuleset files_;
  std::vector<Place> places_;
  rlim_t maxProcesses_;
};

// What of an extension's confinement this kernel lacks, and what that means: a sentence for a
// person, empty where it lacks nothing.
std::string confinementGap();

}  // namespace quillpad::home
