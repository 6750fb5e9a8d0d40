#include "platform/os/Landlock.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillpad {
namespace {

// The header of Debian 12 ends before TCP and signals.
struct RulesetAttributes {
  std::uint64_t files = 0;
  std::uint64_t tcp = 0;
  std::uint64_t scopes = 0;

  bool operator==(const RulesetAttributes&) const = default;
};

struct PortRule {
  std::uint64_t allowed = 0;
  std::uint64_t port = 0;
};

constexpr int portRule = 2;
constexpr std::uint64_t bindTcp = 1 << 0;
constexpr std::uint64_t connectTcp = 1 << 1;
constexpr std::uint64_t abstractSockets = 1 << 0;
constexpr std::uint64_t signals = 1 << 1;

// How many rights about files each version of Landlock has, the lowest bits.
constexpr std::array fileRights{0, 13, 14, 15, 15, 16};

constexpr int firstWithTcp = 4;
constexpr int firstWithScopes = 6;

// Not open where there is nothing that it could close.
std::expected<FileDescriptor, int> makeRuleset(const RulesetAttributes& attributes) {
  if (attributes == RulesetAttributes()) {
    return FileDescriptor();
  }
  constexpr int lowest = 10;  // out of the way of those that a child is given
  const FileDescriptor made(
      static_cast<int>(::syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0)));
  FileDescriptor ruleset(made ? ::fcntl(made.get(), F_DUPFD_CLOEXEC, lowest) : -1);
  if (!ruleset) {
    return std::unexpected(errno);
  }
  return ruleset;
}

}  // namespace

int LandlockRuleset::kernelVersion() {
  const auto version =
      ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
  return static_cast<int>(std::max(version, 0L));
}

std::expected<LandlockRuleset, int> LandlockRuleset::ofFiles() {
  const int version = kernelVersion();
  const auto known =
      std::min<std::size_t>(static_cast<std::size_t>(version), fileRights.size() - 1);
  return of(makeRuleset(
      {.files = (std::uint64_t{1} << fileRights.at(known)) - 1,
       .tcp = version < firstWithTcp ? 0 : bindTcp,
       .scopes = version < firstWithScopes ? 0 : abstractSockets | signals}));
}

std::expected<LandlockRuleset, int> LandlockRuleset::ofTcp() {
  return of(makeRuleset({.tcp = kernelVersion() < firstWithTcp ? 0 : bindTcp | connectTcp}));
}

std::expected<LandlockRuleset, int> LandlockRuleset::of(std::expected<FileDescriptor, int> made) {
  if (!made) {
    return std::unexpected(made.error());
  }
  return LandlockRuleset(std::move(*made));
}

void LandlockRuleset::allowReading(const char* place) const {
  constexpr std::uint64_t reading = LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_READ_FILE;
  allow(place, reading, reading | LANDLOCK_ACCESS_FS_READ_DIR);
}

void LandlockRuleset::allowWriting(const char* place) const {
  allow(place, LANDLOCK_ACCESS_FS_WRITE_FILE, LANDLOCK_ACCESS_FS_WRITE_FILE);
}

void LandlockRuleset::allow(
    const char* place, std::uint64_t ofFiles, std::uint64_t ofFolders) const {
  const FileDescriptor there(::open(place, O_PATH | O_CLOEXEC));
  struct stat about{};
  if (!ruleset_ || !there || ::fstat(there.get(), &about) != 0) {
    return;
  }
  const landlock_path_beneath_attr rule{
      .allowed_access = S_ISDIR(about.st_mode) ? ofFolders : ofFiles, .parent_fd = there.get()};
  ::syscall(SYS_landlock_add_rule, ruleset_.get(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
}

void LandlockRuleset::allowConnecting(std::uint16_t port) const {
  const PortRule rule{.allowed = connectTcp, .port = port};
  if (ruleset_) {
    ::syscall(SYS_landlock_add_rule, ruleset_.get(), portRule, &rule, 0);
  }
}

bool LandlockRuleset::enter() const {
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         (!ruleset_ || ::syscall(SYS_landlock_restrict_self, ruleset_.get(), 0) == 0);
}

}  // namespace quillpad
