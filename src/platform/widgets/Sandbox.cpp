#include "platform/widgets/Sandbox.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <initializer_list>
#include <linux/netlink.h>
#include <memory>
#include <netinet/in.h>
#include <sched.h>
#include <span>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <type_traits>
#include <unistd.h>

#include "platform/os/Landlock.h"
#include "platform/os/SystemCallFilters.h"
#include "platform/widgets/Seccomp.h"

namespace quillpad::widgets {
namespace {

constexpr std::uint16_t domainPort = 53;  // names are looked up by TCP where an answer is long
constexpr std::uint16_t httpsPort = 443;

// What is allowed whatever its arguments are. All else is as if the kernel had none of it, which
// libraries are prepared for.

constexpr std::array memory{
    SCMP_SYS(brk),
    SCMP_SYS(madvise),
    SCMP_SYS(membarrier),
    SCMP_SYS(mincore),
    SCMP_SYS(mmap),
    SCMP_SYS(mprotect),
    SCMP_SYS(mremap),
    SCMP_SYS(munmap)};

// Which of the files may be opened is Landlock's.
constexpr std::array files{
    SCMP_SYS(access),     SCMP_SYS(close),      SCMP_SYS(close_range), SCMP_SYS(dup),
    SCMP_SYS(dup2),       SCMP_SYS(dup3),       SCMP_SYS(eventfd2),    SCMP_SYS(faccessat),
    SCMP_SYS(faccessat2), SCMP_SYS(fadvise64),  SCMP_SYS(fstat),       SCMP_SYS(fstatfs),
    SCMP_SYS(getcwd),     SCMP_SYS(getdents64), SCMP_SYS(lseek),       SCMP_SYS(lstat),
    SCMP_SYS(newfstatat), SCMP_SYS(open),       SCMP_SYS(openat),      SCMP_SYS(pipe),
    SCMP_SYS(pipe2),      SCMP_SYS(pread64),    SCMP_SYS(read),        SCMP_SYS(readlink),
    SCMP_SYS(readlinkat), SCMP_SYS(readv),      SCMP_SYS(stat),        SCMP_SYS(statfs),
    SCMP_SYS(statx),      SCMP_SYS(write),      SCMP_SYS(writev)};

constexpr std::array waiting{
    SCMP_SYS(clock_getres),   SCMP_SYS(clock_gettime),  SCMP_SYS(clock_nanosleep),
    SCMP_SYS(epoll_create1),  SCMP_SYS(epoll_ctl),      SCMP_SYS(epoll_pwait),
    SCMP_SYS(epoll_wait),     SCMP_SYS(futex),          SCMP_SYS(gettimeofday),
    SCMP_SYS(nanosleep),      SCMP_SYS(pause),          SCMP_SYS(poll),
    SCMP_SYS(ppoll),          SCMP_SYS(pselect6),       SCMP_SYS(restart_syscall),
    SCMP_SYS(sched_yield),    SCMP_SYS(select),         SCMP_SYS(time),
    SCMP_SYS(timerfd_create), SCMP_SYS(timerfd_settime)};

constexpr std::array itself{
    SCMP_SYS(exit),
    SCMP_SYS(exit_group),
    SCMP_SYS(getcpu),
    SCMP_SYS(getegid),
    SCMP_SYS(geteuid),
    SCMP_SYS(getgid),
    SCMP_SYS(getpid),
    SCMP_SYS(getppid),
    SCMP_SYS(getrandom),
    SCMP_SYS(getresgid),
    SCMP_SYS(getresuid),
    SCMP_SYS(getrlimit),
    SCMP_SYS(getrusage),
    SCMP_SYS(gettid),
    SCMP_SYS(getuid),
    SCMP_SYS(rseq),
    SCMP_SYS(rt_sigaction),
    SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(rt_sigreturn),
    SCMP_SYS(sched_getaffinity),
    SCMP_SYS(sched_getparam),
    SCMP_SYS(sched_getscheduler),
    SCMP_SYS(set_robust_list),
    SCMP_SYS(sigaltstack),
    SCMP_SYS(sysinfo),
    SCMP_SYS(uname)};

// Of an open socket. Who may not listen is bound to a port for nothing.
constexpr std::array sockets{
    SCMP_SYS(bind),
    SCMP_SYS(connect),
    SCMP_SYS(getpeername),
    SCMP_SYS(getsockname),
    SCMP_SYS(getsockopt),
    SCMP_SYS(recvfrom),
    SCMP_SYS(recvmmsg),
    SCMP_SYS(recvmsg),
    SCMP_SYS(setsockopt),
    SCMP_SYS(shutdown)};

struct Release {
  void operator()(void* filter) const { seccomp_release(filter); }
};

class Filter {
 public:
  Filter() : filter_(seccomp_init(SCMP_ACT_ERRNO(ENOSYS))) {}

  void allow(std::span<const int> systemCalls) {
    for (const int systemCall : systemCalls) {
      allow(systemCall, {});
    }
  }

  // Where all of the conditions hold.
  void allow(int systemCall, std::initializer_list<scmp_arg_cmp> conditions) {
    const int error = seccomp_rule_add_array(
        filter_.get(),
        SCMP_ACT_ALLOW,
        systemCall,
        static_cast<unsigned>(conditions.size()),
        conditions.begin());
    error_ = error_ == 0 ? -error : error_;
  }

  // 0, or what went wrong.
  int enter() {
    if (error_ == 0) {
      error_ = -seccomp_attr_set(filter_.get(), SCMP_FLTATR_API_SYSRAWRC, 1);
    }
    return error_ == 0 ? -seccomp_load(filter_.get()) : error_;
  }

 private:
  std::unique_ptr<std::remove_pointer_t<scmp_filter_ctx>, Release> filter_;
  int error_ = 0;
};

// Of an argument that is an int the kernel looks at this alone.
constexpr std::uint64_t ofInt = 0xFFFFFFFF;

scmp_arg_cmp bits(unsigned index, std::uint64_t mask, std::uint64_t value) {
  return {.arg = index, .op = SCMP_CMP_MASKED_EQ, .datum_a = mask, .datum_b = value};
}

scmp_arg_cmp is(unsigned index, std::uint64_t value) { return bits(index, ofInt, value); }

// Its threads and itself. The flags of the newer call that makes threads cannot be looked at; the C
// library falls back to this one.
void keepToItself(Filter& filter) {
  filter.allow(SCMP_SYS(clone), {bits(0, CLONE_THREAD, CLONE_THREAD)});
  const auto self = static_cast<std::uint64_t>(::getpid());
  filter.allow(SCMP_SYS(kill), {is(0, self)});
  filter.allow(SCMP_SYS(tgkill), {is(0, self)});
  filter.allow(SCMP_SYS(prlimit64), {is(0, 0)});
  for (const std::uint64_t option : {PR_GET_DUMPABLE, PR_GET_NAME, PR_SET_NAME, PR_SET_VMA}) {
    filter.allow(SCMP_SYS(prctl), {is(0, option)});
  }
}

// Neither locks and leases, which make others wait, nor signals about files, which may go to
// others.
void keepFromHoldingFiles(Filter& filter) {
  for (const std::uint64_t command :
       {F_DUPFD, F_DUPFD_CLOEXEC, F_GETFD, F_SETFD, F_GETFL, F_SETFL}) {
    filter.allow(SCMP_SYS(fcntl), {is(1, command)});
  }
  for (const std::uint64_t request : {FIONBIO, FIONREAD, TCGETS}) {
    filter.allow(SCMP_SYS(ioctl), {is(1, request)});
  }
}

// TCP and UDP over the internet, what name lookup asks for this machine's addresses, and pairs of
// which both ends are here. Other protocols would pass Landlock by, as does a connection that is
// made by what is sent first.
void keepToInternet(Filter& filter) {
  constexpr std::uint64_t kind = 0xF;  // the rest of the type are flags
  const auto allow = [&](std::uint64_t family, __socket_type type, std::uint64_t protocol) {
    filter.allow(
        SCMP_SYS(socket), {is(0, family), bits(1, kind, std::uint64_t{type}), is(2, protocol)});
  };
  for (const std::uint64_t family : {AF_INET, AF_INET6}) {
    for (const std::uint64_t protocol : {IPPROTO_IP, IPPROTO_TCP}) {
      allow(family, SOCK_STREAM, protocol);
    }
    for (const std::uint64_t protocol : {IPPROTO_IP, IPPROTO_UDP}) {
      allow(family, SOCK_DGRAM, protocol);
    }
  }
  allow(AF_NETLINK, SOCK_RAW, NETLINK_ROUTE);
  filter.allow(SCMP_SYS(socketpair), {is(0, AF_UNIX), bits(1, kind, SOCK_STREAM)});

  filter.allow(SCMP_SYS(sendto), {bits(3, MSG_FASTOPEN, 0)});
  filter.allow(SCMP_SYS(sendmsg), {bits(2, MSG_FASTOPEN, 0)});
  filter.allow(SCMP_SYS(sendmmsg), {bits(3, MSG_FASTOPEN, 0)});
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

std::unexpected<std::string> failure(const char* what, int error) {
  return std::unexpected(
      std::string("the widget extension does not run, since ") + what +
      " cannot be closed to it: " + std::strerror(error) + "; end other programs and try again");
}

}  // namespace

std::expected<void, std::string> enterSandbox(const std::vector<std::string>& origins) {
  ::prctl(PR_SET_DUMPABLE, 0);

  const auto ports = LandlockRuleset::ofTcp();
  if (!ports) {
    return failure("the network", ports.error());
  }
  ports->allowConnecting(domainPort);
  for (const std::string& origin : origins) {
    ports->allowConnecting(portOf(origin));
  }
  if (!ports->enter()) {
    return failure("the network", errno);
  }

  if (!kernelHasSystemCallFilters()) {
    return {};
  }
  Filter filter;
  filter.allow(memory);
  filter.allow(files);
  filter.allow(waiting);
  filter.allow(itself);
  filter.allow(sockets);
  keepToItself(filter);
  keepFromHoldingFiles(filter);
  keepToInternet(filter);
  if (const int error = filter.enter(); error != 0) {
    return failure("the kernel", error);
  }
  return {};
}

}  // namespace quillpad::widgets
