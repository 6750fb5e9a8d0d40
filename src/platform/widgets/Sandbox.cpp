#include "platform/widgets/Sandbox.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <fcntl.h>
#include <memory>
#include <sched.h>
#include <span>
#include <string_view>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <type_traits>
#include <unistd.h>

#include "platform/foundation/Landlock.h"
#include "platform/widgets/Seccomp.h"

namespace quillpad::widgets {
namespace {

constexpr std::uint16_t domainPort = 53;  // names are looked up by TCP where an answer is long
constexpr std::uint16_t httpsPort = 443;

// What is refused whatever its arguments are.

constexpr std::array otherProcesses{
    SCMP_SYS(execve),
    SCMP_SYS(execveat),
    SCMP_SYS(fork),
    SCMP_SYS(vfork),
    SCMP_SYS(ioprio_set),
    SCMP_SYS(kcmp),
    SCMP_SYS(migrate_pages),
    SCMP_SYS(move_pages),
    SCMP_SYS(pidfd_getfd),
    SCMP_SYS(pidfd_open),
    SCMP_SYS(pidfd_send_signal),
    SCMP_SYS(process_madvise),
    SCMP_SYS(process_vm_readv),
    SCMP_SYS(process_vm_writev),
    SCMP_SYS(ptrace),
    SCMP_SYS(sched_setaffinity),
    SCMP_SYS(sched_setattr),
    SCMP_SYS(sched_setparam),
    SCMP_SYS(sched_setscheduler),
    SCMP_SYS(setpriority),
    SCMP_SYS(tkill)};

constexpr std::array serving{
    SCMP_SYS(accept),
    SCMP_SYS(accept4),
    SCMP_SYS(listen),
    SCMP_SYS(msgget),
    SCMP_SYS(semget),
    SCMP_SYS(shmget)};

// Those that Landlock knows nothing of, or not in every version.
constexpr std::array changingFiles{
    SCMP_SYS(chmod),
    SCMP_SYS(chown),
    SCMP_SYS(fchmod),
    SCMP_SYS(fchmodat),
    SCMP_SYS(fchown),
    SCMP_SYS(fchownat),
    SCMP_SYS(fremovexattr),
    SCMP_SYS(fsetxattr),
    SCMP_SYS(lchown),
    SCMP_SYS(lremovexattr),
    SCMP_SYS(lsetxattr),
    SCMP_SYS(removexattr),
    SCMP_SYS(setxattr),
    SCMP_SYS(truncate),
    SCMP_SYS(utime),
    SCMP_SYS(utimensat),
    SCMP_SYS(utimes)};

// Who holds a file makes those wait who would write or open it.
constexpr std::array holdingFiles{SCMP_SYS(flock)};

// They do the work of other system calls.
constexpr std::array doneUnseen{
    SCMP_SYS(io_uring_enter), SCMP_SYS(io_uring_register), SCMP_SYS(io_uring_setup)};

// Much of the kernel for little use.
constexpr std::array muchKernel{
    SCMP_SYS(add_key),
    SCMP_SYS(bpf),
    SCMP_SYS(chroot),
    SCMP_SYS(fsopen),
    SCMP_SYS(keyctl),
    SCMP_SYS(mount),
    SCMP_SYS(name_to_handle_at),
    SCMP_SYS(open_by_handle_at),
    SCMP_SYS(open_tree),
    SCMP_SYS(perf_event_open),
    SCMP_SYS(pivot_root),
    SCMP_SYS(request_key),
    SCMP_SYS(setns),
    SCMP_SYS(umount2),
    SCMP_SYS(unshare),
    SCMP_SYS(userfaultfd)};

struct Release {
  void operator()(void* filter) const { seccomp_release(filter); }
};

class Filter {
 public:
  Filter() : filter_(seccomp_init(SCMP_ACT_ALLOW)) {}

  void refuse(std::span<const int> systemCalls) {
    for (const int systemCall : systemCalls) {
      add(systemCall, EPERM, nullptr);
    }
  }
  // As if the kernel had none.
  void deny(int systemCall) { add(systemCall, ENOSYS, nullptr); }
  void refuseWhere(int systemCall, const scmp_arg_cmp& condition) {
    add(systemCall, EPERM, &condition);
  }

  // Fails without effect where the kernel has no such filters.
  void enter() { seccomp_load(filter_.get()); }

 private:
  // One that this machine does not have is refused by the kernel.
  void add(int systemCall, int error, const scmp_arg_cmp* condition) {
    seccomp_rule_add_array(
        filter_.get(),
        SCMP_ACT_ERRNO(static_cast<std::uint16_t>(error)),
        systemCall,
        condition == nullptr ? 0 : 1,
        condition);
  }

  std::unique_ptr<std::remove_pointer_t<scmp_filter_ctx>, Release> filter_;
};

scmp_arg_cmp argument(
    unsigned index, scmp_compare comparison, std::uint64_t first, std::uint64_t second = 0) {
  return {.arg = index, .op = comparison, .datum_a = first, .datum_b = second};
}

// Threads are made by either call; the flags of the newer one cannot be looked at, and the C
// library falls back to the other.
void keepFromProcesses(Filter& filter) {
  filter.deny(SCMP_SYS(clone3));
  filter.refuseWhere(SCMP_SYS(clone), argument(0, SCMP_CMP_MASKED_EQ, CLONE_THREAD, 0));
  const auto self = static_cast<std::uint64_t>(::getpid());
  filter.refuseWhere(SCMP_SYS(kill), argument(0, SCMP_CMP_NE, self));
  filter.refuseWhere(SCMP_SYS(tgkill), argument(0, SCMP_CMP_NE, self));
  filter.refuseWhere(SCMP_SYS(prlimit64), argument(0, SCMP_CMP_NE, 0));
  constexpr std::uint64_t read = 0xFFFFFFFF;  // of what is handed over the kernel looks at this
  filter.refuseWhere(SCMP_SYS(prctl), argument(0, SCMP_CMP_MASKED_EQ, read, PR_SET_PDEATHSIG));
}

// Of the internet, and the one by which name lookup asks for this machine's addresses.
void keepToInternetSockets(Filter& filter) {
  constexpr std::array<unsigned, 3> allowed{AF_INET, AF_INET6, AF_NETLINK};
  constexpr unsigned last = std::ranges::max(allowed);
  for (unsigned family = 0; family < last; ++family) {
    if (std::ranges::find(allowed, family) == allowed.end()) {
      filter.refuseWhere(SCMP_SYS(socket), argument(0, SCMP_CMP_EQ, family));
    }
  }
  filter.refuseWhere(SCMP_SYS(socket), argument(0, SCMP_CMP_GT, last));
}

// Of an origin: "https://host", "https://host:8443" or "https://[::1]:8443".
std::uint16_t portOf(std::string_view origin) {
  const std::size_t colon = origin.find_last_of(":]/");
  std::uint16_t port = httpsPort;
  if (colon != std::string_view::npos && origin[colon] == ':') {
    std::from_chars(origin.data() + colon + 1, origin.data() + origin.size(), port);
  }
  return port;
}

}  // namespace

void enterSandbox(const std::vector<std::string>& origins) {
  ::prctl(PR_SET_DUMPABLE, 0);

  const LandlockRuleset ports = LandlockRuleset::ofTcp();
  ports.allowConnecting(domainPort);
  for (const std::string& origin : origins) {
    ports.allowConnecting(portOf(origin));
  }
  ports.enter();

  Filter filter;
  filter.refuse(otherProcesses);
  filter.refuse(serving);
  filter.refuse(changingFiles);
  filter.refuse(holdingFiles);
  filter.refuseWhere(SCMP_SYS(fcntl), argument(1, SCMP_CMP_MASKED_EQ, 0xFFFFFFFF, F_SETLEASE));
  filter.refuse(doneUnseen);
  filter.refuse(muchKernel);
  keepFromProcesses(filter);
  keepToInternetSockets(filter);
  filter.enter();
}

}  // namespace quillpad::widgets
