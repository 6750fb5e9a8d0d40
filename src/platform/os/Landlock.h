// What a process can have the kernel close to it for good: files and TCP ports that are not named,
// by Linux's Landlock. A kernel without it, or with a part of it, closes what it can. A ruleset
// belongs to one thread while it is made.
#pragma once

#include <cstdint>
#include <expected>
#include <utility>

#include "platform/os/FileDescriptor.h"

namespace quillpad {

class LandlockRuleset {
 public:
  // How much of Landlock the kernel has: 0 has none of it, 1 has files, 4 has TCP ports.
  static int kernelVersion();

  // All files but those allowed afterwards, binding a TCP port, and signals to other processes.
  // errno where the kernel would close it but cannot now, for want of descriptors or memory.
  static std::expected<LandlockRuleset, int> ofFiles();

  // Connecting to and binding a TCP port, but what is allowed afterwards. errno as above.
  static std::expected<LandlockRuleset, int> ofTcp();

  // The file, or the folder with everything below it, as it is now; nothing where it is not there.
  // Only system calls.
  void allowReading(const char* place) const;
  void allowWriting(const char* place) const;

  void allowConnecting(std::uint16_t port) const;

  // Closes all else to the calling thread and what it starts from now on; false, with errno, where
  // the kernel refuses. Only system calls.
  bool enter() const;

 private:
  void allow(const char* place, std::uint64_t ofFiles, std::uint64_t ofFolders) const;

  static std::expected<LandlockRuleset, int> of(std::expected<FileDescriptor, int> made);
  explicit LandlockRuleset(FileDescriptor ruleset) : ruleset_(std::move(ruleset)) {}

  FileDescriptor ruleset_;  // not open where the kernel has nothing to close it by
};

}  // namespace quillpad
