#include "home/extension/ExtensionProcess.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

// This header of glibc 2.36 forgets to say that it is C.
extern "C" {
#include <sys/pidfd.h>
}

namespace quillpad::home {
namespace {

// Where the extension finds its end of the channel.
constexpr int childChannel = 3;

std::string systemError() { return std::strerror(errno); }

std::unexpected<std::string> startFailure(
    const std::filesystem::path& program, const std::string& reason) {
  return std::unexpected("cannot start the extension " + program.string() + ": " + reason);
}

struct Pipe {
  FileDescriptor readEnd;
  FileDescriptor writeEnd;
};

std::expected<Pipe, std::string> makePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    return std::unexpected(systemError());
  }
  ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
  return Pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

// This process's environment, with the channel's variable.
std::vector<std::string> childEnvironment() {
  const std::string prefix = std::string(channel::descriptorVariable) + "=";
  std::vector<std::string> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (!std::string_view(*variable).starts_with(prefix)) {
      variables.emplace_back(*variable);
    }
  }
  variables.push_back(prefix + std::to_string(childChannel));
  return variables;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  result.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    result.push_back(text.data());
  }
  result.push_back(nullptr);
  return result;
}

// How the child is made: its standard descriptors, the channel, no inherited signal settings, and a
// process group of its own, so that Ctrl-C at a terminal reaches the home screen alone.
class SpawnPlan {
 public:
  SpawnPlan(const FileDescriptor& channel, const Pipe& output, const Pipe& error) {
    ::posix_spawn_file_actions_init(&actions_);
    ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions_, output.writeEnd.get(), STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions_, error.writeEnd.get(), STDERR_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions_, channel.get(), childChannel);
    ::posix_spawn_file_actions_addclosefrom_np(&actions_, childChannel + 1);

    sigset_t none;
    sigset_t all;
    ::sigemptyset(&none);
    ::sigfillset(&all);
    ::posix_spawnattr_init(&attributes_);
    ::posix_spawnattr_setsigmask(&attributes_, &none);
    ::posix_spawnattr_setsigdefault(&attributes_, &all);
    ::posix_spawnattr_setpgroup(&attributes_, 0);
    ::posix_spawnattr_setflags(
        &attributes_,
        static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP));
  }
  ~SpawnPlan() {
    ::posix_spawn_file_actions_destroy(&actions_);
    ::posix_spawnattr_destroy(&attributes_);
  }
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;

  // The child's id, or why there is none.
  std::expected<pid_t, std::string> carryOut(const std::filesystem::path& program) const {
    std::vector<std::string> arguments{program.string()};
    std::vector<std::string> variables = childEnvironment();
    pid_t child = 0;
    const int error = ::posix_spawn(
        &child,
        program.c_str(),
        &actions_,
        &attributes_,
        pointers(arguments).data(),
        pointers(variables).data());
    if (error != 0) {
      return std::unexpected(std::strerror(error));
    }
    return child;
  }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

// More than a pipe or a socket holds: what an extension left at its end is taken at once.
constexpr std::size_t maxBytesPerTurn = std::size_t{256} * 1024;

// Takes the lines that are there now; at the end of the stream the descriptor is closed.
template <class Take>
void readLines(FileDescriptor& descriptor, channel::LineReader& lines, Take take) {
  std::array<char, 65536> buffer{};
  for (std::size_t total = 0; descriptor && total < maxBytesPerTurn;) {
    const ssize_t count = ::read(descriptor.get(), buffer.data(), buffer.size());
    if (count > 0) {
      total += static_cast<std::size_t>(count);
      lines.append({buffer.data(), static_cast<std::size_t>(count)});
      while (auto line = lines.next()) {
        take(std::move(*line));
      }
    } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
      descriptor.close();
    } else if (errno == EAGAIN) {
      return;
    }
  }
}

}  // namespace

std::string ExtensionProcess::End::manner() const {
  if (signal == 0) {
    return "exit status " + std::to_string(exitStatus);
  }
  const char* name = ::sigdescr_np(signal);
  return "signal " + std::to_string(signal) + (name == nullptr ? "" : std::string(", ") + name);
}

std::expected<ExtensionProcess, std::string> ExtensionProcess::start(
    const std::filesystem::path& program) {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    return startFailure(program, systemError());
  }
  FileDescriptor ourEnd(ends[0]);
  const FileDescriptor childEnd(ends[1]);
  ::fcntl(ourEnd.get(), F_SETFL, O_NONBLOCK);
  auto output = makePipe();
  auto error = makePipe();
  if (!output || !error) {
    return startFailure(program, output ? error.error() : output.error());
  }
  const auto child = SpawnPlan(childEnd, *output, *error).carryOut(program);
  if (!child) {
    return startFailure(program, child.error());
  }

  ExtensionProcess process;
  process.pid_ = *child;
  process.process_ = FileDescriptor(::pidfd_open(*child, 0));
  process.channel_ = std::move(ourEnd);
  process.output_ = std::move(output->readEnd);
  process.error_ = std::move(error->readEnd);
  if (!process.process_) {
    return startFailure(program, systemError());
  }
  return process;
}

ExtensionProcess::~ExtensionProcess() {
  if (process_) {
    kill();
    constexpr int maxWait = 2000;  // milliseconds
    pollfd end{process_.get(), POLLIN, 0};
    ::poll(&end, 1, maxWait);
    reap();
  }
}

void ExtensionProcess::send(std::string_view line) {
  pending_ += line;
  pending_ += '\n';
  writePending();
}

void ExtensionProcess::writePending() {
  while (channel_ && !pending_.empty()) {
    const ssize_t count =
        ::send(channel_.get(), pending_.data(), pending_.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count >= 0) {
      pending_.erase(0, static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return;  // the channel is full for now, or its end is about to be read
    }
  }
}

std::array<pollfd, 4> ExtensionProcess::descriptors() const {
  const auto wanted = static_cast<short>(pending_.empty() ? POLLIN : POLLIN | POLLOUT);
  return {
      pollfd{process_.get(), POLLIN, 0},
      pollfd{channel_.get(), wanted, 0},
      pollfd{output_.get(), POLLIN, 0},
      pollfd{error_.get(), POLLIN, 0}};
}

ExtensionProcess::Arrivals ExtensionProcess::take() {
  Arrivals arrivals;
  if (!process_) {
    return arrivals;
  }
  // The end is looked for first and the streams are read afterwards, so that they are complete when
  // it is told. The channel is read before the printed lines, so that those before a message are
  // there with it.
  pollfd end{process_.get(), POLLIN, 0};
  const bool ended = ::poll(&end, 1, 0) > 0;

  writePending();
  readLines(channel_, messages_, [&](channel::Line line) {
    arrivals.messages.push_back(std::move(line));
  });
  readPrinted(PrintedLine::Stream::output, arrivals.printed);
  readPrinted(PrintedLine::Stream::error, arrivals.printed);
  if (ended) {
    for (const auto& [stream, lines] :
         {std::pair{PrintedLine::Stream::output, &outputLines_},
          {PrintedLine::Stream::error, &errorLines_}}) {
      if (const std::string rest = lines->takeRest(); !rest.empty()) {
        arrivals.printed.push_back({stream, printableText(rest)});
      }
    }
    kill();  // what it may have started itself
    arrivals.end = reap();
    channel_.close();
    output_.close();
    error_.close();
  } else if (!channel_) {
    kill();  // it hung up: nothing can be asked of it any more
  }
  return arrivals;
}

void ExtensionProcess::readPrinted(PrintedLine::Stream stream, std::vector<PrintedLine>& printed) {
  const bool isError = stream == PrintedLine::Stream::error;
  readLines(
      isError ? error_ : output_,
      isError ? errorLines_ : outputLines_,
      [&](const channel::Line& line) {
        if (line.tooLong) {
          printed.push_back({stream, "(a line of more than 64 KiB)"});
        } else if (!line.text.empty()) {
          printed.push_back({stream, printableText(line.text)});
        }
      });
}

// The group first, for as long as the child is not waited for; then the child itself, which may
// have left its group.
void ExtensionProcess::kill() const {
  if (process_) {
    ::kill(-pid_, SIGKILL);
    ::pidfd_send_signal(process_.get(), SIGKILL, nullptr, 0);
  }
}

ExtensionProcess::End ExtensionProcess::reap() {
  siginfo_t info{};
  ::waitid(P_PIDFD, static_cast<id_t>(process_.get()), &info, WEXITED | WNOHANG);
  process_.close();
  return info.si_code == CLD_EXITED ? End{.exitStatus = info.si_status}
                                    : End{.signal = info.si_status};
}

}  // namespace quillpad::home
