#include "home/extension/ChildProcess.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <mutex>
#include <poll.h>
#include <set>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

// This header of glibc 2.36 forgets to say that it is C.
extern "C" {
#include <sys/pidfd.h>
}

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto endingTimeout = 2s;  // for the end of what was killed

std::string textOf(int error) { return std::strerror(error); }

// The children that were started here and not yet waited for. What else descends from them is a
// stray once its parent has ended: the kernel keeps one family for each process, so does this.
struct Family {
  std::mutex mutex;
  std::set<pid_t> members;
  // Of this process, from before any child could lower it.
  rlim_t markBefore = [] {
    rlimit limits{};
    ::getrlimit(Confinement::mark, &limits);
    return limits.rlim_max;
  }();
};

Family& family() {
  static Family family;
  return family;
}

// Everything that the child needs, so that it allocates nothing between vfork and exec.
struct Child {
  const char* program = nullptr;
  std::vector<char*> arguments;
  std::vector<char*> environment;
  std::vector<int> descriptors;
  int failure{};  // takes errno where the program cannot be run
  pid_t parent = 0;
  const Confinement* confinement = nullptr;
};

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  result.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    result.push_back(text.data());
  }
  result.push_back(nullptr);
  return result;
}

void forgetSignalSettings() {
  struct sigaction preset{};
  preset.sa_handler = SIG_DFL;
  for (int signal = 1; signal < NSIG; ++signal) {
    ::sigaction(signal, &preset, nullptr);
  }
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

bool takeDescriptors(const Child& child) {
  const int null = ::open("/dev/null", O_RDONLY);
  if (null < 0 || ::dup2(null, STDIN_FILENO) < 0) {
    return false;
  }
  int next = STDIN_FILENO;
  for (const int descriptor : child.descriptors) {
    if (::dup2(descriptor, ++next) < 0) {
      return false;
    }
  }
  return ::close_range(static_cast<unsigned>(next) + 1, ~0U, CLOSE_RANGE_CLOEXEC) == 0;
}

// The child's part. It may share this process's memory: nothing but system calls.
[[noreturn]] void become(const Child& child) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() == child.parent && ::setsid() >= 0 && takeDescriptors(child) &&
      child.confinement->enter()) {
    forgetSignalSettings();
    ::execve(child.program, child.arguments.data(), child.environment.data());
  }
  const int error = errno;
  [[maybe_unused]] const ssize_t written = ::write(child.failure, &error, sizeof error);
  ::_exit(127);
}

// The id of the new process, or -1. No handler of this process runs in the child.
pid_t fork(const Child& child) {
  sigset_t all;
  sigset_t before;
  ::sigfillset(&all);
  ::pthread_sigmask(SIG_BLOCK, &all, &before);
  // What the child does until it is the program are system calls alone.
  // NOLINTBEGIN(bugprone-unsafe-functions,clang-analyzer-*)
  const pid_t pid = ::vfork();
  if (pid == 0) {
    become(child);
  }
  // NOLINTEND(bugprone-unsafe-functions,clang-analyzer-*)
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return pid;
}

// Beyond those that the child is given.
std::expected<FileDescriptor, int> movedUp(const FileDescriptor& descriptor) {
  constexpr int lowest = 10;
  FileDescriptor moved(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, lowest));
  if (!moved) {
    return std::unexpected(errno);
  }
  return moved;
}

// Why the program did not come to run; 0 where it does.
int failureOf(const FileDescriptor& readEnd) {
  int error = 0;
  // The other end is closed by the program's start or end, so this takes no longer than those.
  const ssize_t count = TEMP_FAILURE_RETRY(  // NOLINT(clang-analyzer-unix.Block*)
      ::read(readEnd.get(), &error, sizeof error));
  return count > 0 ? error : 0;
}

std::vector<pid_t> children() {
  std::vector<pid_t> result;
  std::error_code error;
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task", error)) {
    std::ifstream file(task.path() / "children");
    for (pid_t child = 0; file >> child;) {
      result.push_back(child);
    }
  }
  return result;
}

// What descends from a child that was started here carries the mark of its confinement; other
// children of this process are not this file's business.
bool isMarked(pid_t process) {
  rlimit limits{};
  return ::prlimit(process, Confinement::mark, nullptr, &limits) == 0 &&
         limits.rlim_max < family().markBefore;
}

std::vector<pid_t> strays() {
  std::vector<pid_t> result = children();
  std::erase_if(
      result, [](pid_t child) { return family().members.contains(child) || !isMarked(child); });
  return result;
}

// Whether the process has ended, or does so within the time.
bool endsWithin(const FileDescriptor& process, std::chrono::milliseconds time) {
  pollfd ended{.fd = process.get(), .events = POLLIN, .revents = {}};
  return ::poll(&ended, 1, static_cast<int>(time.count())) > 0;
}

// Ends and waits for the process, but not beyond the time.
void end(pid_t process, Clock::time_point until) {
  const FileDescriptor descriptor(::pidfd_open(process, 0));
  ::kill(process, SIGKILL);
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now());
  endsWithin(descriptor, std::max(left, 0ms));
  ::waitpid(process, nullptr, WNOHANG);
}

}  // namespace

std::string ChildProcess::End::manner() const {
  if (signal == 0) {
    return "exit status " + std::to_string(exitStatus);
  }
  const char* name = ::sigdescr_np(signal);
  return "signal " + std::to_string(signal) + (name == nullptr ? "" : std::string(", ") + name);
}

std::expected<ChildProcess, std::string> ChildProcess::start(ChildPlan plan) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    return std::unexpected(textOf(errno));
  }
  const FileDescriptor readEnd(ends[0]);
  plan.descriptors.emplace_back(ends[1]);  // the last one, which the child does not keep
  for (FileDescriptor& descriptor : plan.descriptors) {
    auto moved = movedUp(descriptor);
    if (!moved) {
      return std::unexpected(textOf(moved.error()));
    }
    descriptor = std::move(*moved);
  }

  std::vector<std::string> arguments{plan.program.string()};
  Child child{
      .program = plan.program.c_str(),
      .arguments = pointers(arguments),
      .environment = pointers(plan.environment),
      .descriptors = {},
      .failure = plan.descriptors.back().get(),
      .parent = ::getpid(),
      .confinement = &plan.confinement};
  for (const FileDescriptor& descriptor : plan.descriptors) {
    child.descriptors.push_back(descriptor.get());
  }
  child.descriptors.pop_back();

  ::prctl(PR_SET_CHILD_SUBREAPER, 1);
  const std::scoped_lock lock(family().mutex);
  const pid_t pid = fork(child);
  if (pid < 0) {
    return std::unexpected(textOf(errno));
  }
  family().members.insert(pid);
  ChildProcess process(pid, FileDescriptor(::pidfd_open(pid, 0)));
  plan.descriptors.clear();
  if (const int error = process.process_ ? failureOf(readEnd) : EMFILE; error != 0) {
    ::kill(pid, SIGKILL);
    ::waitpid(pid, nullptr, 0);
    family().members.erase(pid);
    process.process_.close();
    return std::unexpected(textOf(error));
  }
  return process;
}

ChildProcess::~ChildProcess() {
  if (process_) {
    kill();
    endsWithin(process_, endingTimeout);
    reap();
  }
}

bool ChildProcess::hasEnded() const { return endsWithin(process_, 0ms); }

void ChildProcess::kill() const {
  if (process_) {
    ::pidfd_send_signal(process_.get(), SIGKILL, nullptr, 0);
  }
}

ChildProcess::End ChildProcess::reap() {
  siginfo_t info{};
  ::waitid(P_PIDFD, static_cast<id_t>(process_.get()), &info, WEXITED | WNOHANG);
  process_.close();
  {
    const std::scoped_lock lock(family().mutex);
    family().members.erase(pid_);
  }
  endStrays();
  return info.si_code == CLD_EXITED ? End{.exitStatus = info.si_status}
                                    : End{.signal = info.si_status};
}

// The children of what is ended become this process's, so it is looked for more until there is
// none.
void endStrays() {
  const std::scoped_lock lock(family().mutex);
  const auto until = Clock::now() + endingTimeout;
  for (auto found = strays(); !found.empty() && Clock::now() < until; found = strays()) {
    for (const pid_t stray : found) {
      ::kill(stray, SIGKILL);
    }
    for (const pid_t stray : found) {
      end(stray, until);
    }
  }
}

}  // namespace quillpad::home
