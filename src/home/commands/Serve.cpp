// The live home screen as a program: runs until it is told to stop, and leaves no process behind.
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <poll.h>
#include <string>
#include <sys/signalfd.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "home/commands/Commands.h"
#include "home/commands/Files.h"
#include "home/commands/ViewChoice.h"
#include "home/extension/Confinement.h"
#include "home/extension/HomeLock.h"
#include "home/page/HomeScreen.h"
#include "platform/os/FileDescriptor.h"

namespace quillpad::home {
namespace {

// What ends the home screen: each is readable when it is time, and not open where it does not
// count.
struct StopRequests {
  FileDescriptor signals;  // SIGINT, SIGTERM and SIGHUP
  FileDescriptor parent;   // its end
};

// A program that ignores SIGHUP, as under nohup, is meant to outlive its shell and its parent.
StopRequests catchStopRequests() {
  struct sigaction hangUp{};
  ::sigaction(SIGHUP, nullptr, &hangUp);
  const bool outlivesItsParent = hangUp.sa_handler == SIG_IGN;

  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  if (!outlivesItsParent) {
    sigaddset(&signals, SIGHUP);
  }
  ::sigprocmask(SIG_BLOCK, &signals, nullptr);
  StopRequests requests{FileDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK)), {}};
  if (!outlivesItsParent) {
    requests.parent = FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, ::getppid(), 0)));
  }
  return requests;
}

void runUntilStopped(HomeScreen& screen, const StopRequests& requests) {
  std::vector<pollfd> descriptors;
  for (;;) {
    descriptors = {{requests.signals.get(), POLLIN, 0}, {requests.parent.get(), POLLIN, 0}};
    screen.addDescriptors(descriptors);
    ::poll(descriptors.data(), descriptors.size(), screen.pollTimeout());
    if (descriptors[0].revents != 0 || descriptors[1].revents != 0) {
      screen.stop();
      return;
    }
    screen.run();
  }
}

struct Serve {
  std::uint16_t port = 8480;
  HomeView view = HomeView::desk;
  std::string samples{};
  std::string switchboard{};

  void declare(Options& options) {
    options.number<std::uint16_t>("--port", port, "The port of 127.0.0.1; 0: a free one", 0, 65535);
    static constexpr std::array views{Named{"desk", HomeView::desk}, Named{"wall", HomeView::wall}};
    options.choice(
        "--view", view, "Whose address to print: of the page, or of the cards alone", views);
    declareSamples(options, samples);
    options.text(
        "--switchboard",
        switchboard,
        "Switches faults from the page; the demo gateway keeps the file as switchboard.json",
        "FILE");
  }

  Done run(const CommandContext& context) const {
    ::signal(SIGPIPE, SIG_IGN);  // the reader of the messages may leave
    const StopRequests stopRequests = catchStopRequests();
    const SampleFolder folder(samples);
    if (const auto read = folder.read(); !read && !samples.empty()) {
      return failure(ExitStatus::notPossible, read.error());
    }
    std::unique_ptr<Switchboard> board;
    if (!switchboard.empty()) {
      auto opened = Switchboard::open(switchboard, context.askOverHttps);
      if (!opened) {
        return failure(ExitStatus::notPossible, opened.error());
      }
      board = std::move(*opened);
    }
    const auto lock = HomeLock::take();
    if (!lock) {
      return failure(ExitStatus::notPossible, lock.error());
    }
    auto screen =
        HomeScreen::start(context.extension, port, context.account, folder, std::move(board));
    if (!screen) {
      return failure(ExitStatus::notPossible, screen.error());
    }
    lock->setAddress((*screen)->address());
    if (Done printed = print((*screen)->address(view) + "\n"); !printed) {
      return printed;
    }
    if (const std::string gap = confinementGap(); !gap.empty()) {
      std::fprintf(stderr, "quillpad-home: %s\n", gap.c_str());
    }
    if (::isatty(STDERR_FILENO) == 1) {
      std::fputs("Ctrl-C ends the home screen.\n", stderr);
    }
    runUntilStopped(**screen, stopRequests);
    return {};
  }
};

}  // namespace

Command serveCommand() {
  return command<Serve>("serve", "Show the live home screen on this machine", "serve --port 8480");
}

}  // namespace quillpad::home
