// An extension that tries what none may, and some of what each must be able to. Its snapshot is the
// list of its attempts that succeeded. HOSTILE_PORT names a port that something listens at,
// HOSTILE_GATEWAY an origin that it is entitled to, HOSTILE_KEY a file of its user.
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <mqueue.h>
#include <netdb.h>
#include <netinet/in.h>
#include <signal.h>
#include <spawn.h>
#include <string>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/personality.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "fixtures/TextEntry.h"
#include "platform/foundation/Clock.h"
#include "platform/os/FileDescriptor.h"
#include "platform/widgets/WidgetBundle.h"

namespace {

using namespace quillpad;

std::string variable(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? "" : value;
}

bool opens(const std::string& path, int flags) {
  return bool(FileDescriptor(::open(path.c_str(), flags, 0600)));
}

bool endsWell(pid_t child) { return child > 0 && ::waitpid(child, nullptr, 0) == child; }

bool forks() {
  const pid_t child = ::fork();
  if (child == 0) {
    ::_exit(0);
  }
  return endsWell(child);
}

bool starts(const char* program) {
  pid_t child = 0;
  std::string name = program;
  char* arguments[] = {name.data(), nullptr};
  return ::posix_spawn(&child, program, nullptr, nullptr, arguments, environ) == 0 &&
         endsWell(child);
}

bool execs() {
  ::execl("/no/such/program", "program", nullptr);
  return errno == ENOENT;  // looked for it
}

bool maps(int sharing) {
  constexpr std::size_t gigabyte = std::size_t{1} << 30;
  return ::mmap(nullptr, gigabyte, PROT_READ | PROT_WRITE, sharing | MAP_ANONYMOUS, -1, 0) !=
         MAP_FAILED;
}

bool fillsAFileInMemory() {
  const FileDescriptor file(::memfd_create("file", MFD_CLOEXEC));
  ::signal(SIGXFSZ, SIG_IGN);
  return ::write(file.get(), "x", 1) == 1;
}

// So that others wait for it.
bool holds(const char* program) {
  const FileDescriptor file(::open(program, O_RDONLY));
  struct flock lock{};
  lock.l_type = F_RDLCK;
  return ::flock(file.get(), LOCK_EX | LOCK_NB) == 0 ||
         ::fcntl(file.get(), F_SETLEASE, F_RDLCK) == 0 || ::fcntl(file.get(), F_SETLK, &lock) == 0;
}

sockaddr_in addressOf(const std::string& port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(port)));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

bool signalsWithAValue(pid_t process) {
  siginfo_t value{};
  value.si_code = SI_QUEUE;
  return ::syscall(SYS_rt_sigqueueinfo, process, 0, &value) == 0 ||
         ::syscall(SYS_rt_tgsigqueueinfo, process, process, 0, &value) == 0;
}

// The kernel signals the owner of a descriptor when there is something to read.
bool makesOwner(pid_t process) {
  const FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM, 0));
  return ::fcntl(socket.get(), F_SETOWN, process) == 0 ||
         ::ioctl(socket.get(), FIOSETOWN, &process) == 0;
}

// Datagrams go from one end of a pair to any other socket too.
bool sendsToLocalSockets() {
  int ends[2]{-1, -1};
  ::socketpair(AF_UNIX, SOCK_DGRAM, 0, ends);
  const FileDescriptor sender(ends[0]);
  const FileDescriptor other(ends[1]);
  const sockaddr_un nobody{AF_UNIX, "\0nobody"};
  ::sendto(sender.get(), "x", 1, 0, reinterpret_cast<const sockaddr*>(&nobody), sizeof nobody);
  return errno == ECONNREFUSED;  // was looked for
}

bool connects(const std::string& port, int protocol = IPPROTO_TCP) {
  const sockaddr_in address = addressOf(port);
  const FileDescriptor socket(::socket(AF_INET, SOCK_STREAM, protocol));
  return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

// To the port, which connects.
bool sends(const std::string& port) {
  const sockaddr_in address = addressOf(port);
  const FileDescriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
  return ::sendto(
             socket.get(),
             "x",
             1,
             MSG_FASTOPEN,
             reinterpret_cast<const sockaddr*>(&address),
             sizeof address) == 1;
}

bool listens() {
  const FileDescriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
  return ::listen(socket.get(), 1) == 0;
}

bool findsLocalhost() {
  addrinfo* found = nullptr;
  const bool well = ::getaddrinfo("localhost", nullptr, nullptr, &found) == 0;
  if (well) {
    ::freeaddrinfo(found);
  }
  return well;
}

bool runsAThread() {
  bool ran = false;
  std::thread([&] { ran = true; }).join();
  return ran;
}

// The folder of its program, which it may read in.
std::string ownFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().string();
}

using Attempt = std::pair<const char*, std::function<bool()>>;

const std::vector<Attempt>& attempts() {
  static const std::string home = variable("HOME");
  static const std::string parent = "/proc/" + std::to_string(::getppid());
  static const std::vector<Attempt> all{
      {"read a key", [] { return opens(variable("HOSTILE_KEY"), O_RDONLY); }},
      {"list the home folder", [] { return opens(home, O_RDONLY | O_DIRECTORY); }},
      {"read /etc/shadow", [] { return opens("/etc/shadow", O_RDONLY); }},
      {"read the parent's memory", [] { return opens(parent + "/mem", O_RDONLY); }},
      {"read the parent's variables", [] { return opens(parent + "/environ", O_RDONLY); }},
      {"write into the home folder", [] { return opens(home + "/new", O_WRONLY | O_CREAT); }},
      {"write into /tmp", [] { return opens("/tmp", O_WRONLY | O_TMPFILE); }},
      {"write beside itself", [] { return opens(ownFolder() + "/new", O_WRONLY | O_CREAT); }},
      {"remove a key", [] { return ::unlink(variable("HOSTILE_KEY").c_str()) == 0; }},
      {"show a key to others", [] { return ::chmod(variable("HOSTILE_KEY").c_str(), 0644) == 0; }},
      {"age a key",
       [] { return ::syscall(SYS_futimesat, AT_FDCWD, variable("HOSTILE_KEY").c_str(), 0) == 0; }},
      {"outlive its parent",
       [] { return ::syscall(SYS_prctl, 1UL << 32 | PR_SET_PDEATHSIG, 0) == 0; }},
      {"connect to another port", [] { return connects(variable("HOSTILE_PORT")); }},
      {"connect by another protocol",
       [] { return connects(variable("HOSTILE_PORT"), IPPROTO_MPTCP); }},
      {"connect by sending", [] { return sends(variable("HOSTILE_PORT")); }},
      {"listen", listens},
      {"talk to a local service",
       [] { return bool(FileDescriptor(::socket(AF_UNIX, SOCK_STREAM, 0))); }},
      {"talk to local services by a pair", sendsToLocalSockets},
      {"send raw packets", [] { return bool(FileDescriptor(::socket(AF_PACKET, SOCK_RAW, 0))); }},
      {"fork", forks},
      {"start a program", [] { return starts("/usr/bin/true"); }},
      {"become a program", execs},
      {"signal its parent", [] { return ::kill(::getppid(), 0) == 0; }},
      {"signal its parent with a value", [] { return signalsWithAValue(::getppid()); }},
      {"have its parent signalled", [] { return makesOwner(::getppid()); }},
      {"limit its parent",
       [] {
         constexpr rlimit oneByte{1, 1};
         return ::prlimit(::getppid(), RLIMIT_CORE, &oneByte, nullptr) == 0;
       }},
      {"trace its parent",
       [] { return ::ptrace(PTRACE_SEIZE, ::getppid(), nullptr, nullptr) == 0; }},
      {"map 1 GB", [] { return maps(MAP_PRIVATE); }},
      {"map 1 GB to share", [] { return maps(MAP_SHARED); }},
      {"fill a file in memory", fillsAFileInMemory},
      {"leave a queue behind",
       [] { return bool(FileDescriptor(::mq_open("/hostile", O_RDWR | O_CREAT, 0600, nullptr))); }},
      {"call what nobody named", [] { return ::personality(0xFFFFFFFF) >= 0; }},
      {"hold a file", [] { return holds("/proc/self/exe"); }},
      // What each must be able to.
      {"read a zone", [] { return opens("/usr/share/zoneinfo/UTC", O_RDONLY); }},
      {"read beside itself", [] { return opens(ownFolder(), O_RDONLY | O_DIRECTORY); }},
      {"connect to its gateway",
       [] {
         const std::string origin = variable("HOSTILE_GATEWAY");
         return connects(origin.substr(origin.rfind(':') + 1));
       }},
      {"look a name up", findsLocalhost},
      {"run a thread", runsAThread}};
  return all;
}

struct Attacker {
  using Entry = fixtures::TextEntry;
  using Context = widgets::TimelineProviderContext;

  Entry placeholder(const Context& /*context*/) const { return {currentDate(), {}}; }

  void getSnapshot(const Context& /*context*/, widgets::Completion<Entry> completion) const {
    std::string successes;
    for (const auto& [what, succeeds] : attempts()) {
      if (succeeds()) {
        successes.append(what).append("; ");
      }
    }
    completion({currentDate(), {successes}});
  }

  void getTimeline(
      const Context& /*context*/, widgets::Completion<widgets::Timeline<Entry>> completion) const {
    completion({{}, widgets::TimelineReloadPolicy::after(currentDate())});
  }
};

struct Attackers {
  std::vector<widgets::WidgetConfiguration> body() const {
    const auto content = [](const ui::Environment&, const fixtures::TextEntry&) {
      return ui::Spacer();
    };
    return {widgets::StaticConfiguration("attack", Attacker(), content)
                .supportedFamilies({ui::WidgetFamily::systemSmall})};
  }
};

}  // namespace

int main() {
  return widgets::main(Attackers(), {.origins = {variable("HOSTILE_GATEWAY")}, .linkSchemes = {}});
}
