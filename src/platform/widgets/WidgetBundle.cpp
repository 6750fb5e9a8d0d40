#include "platform/widgets/WidgetBundle.h"

#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <string_view>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include "platform/channel/Messages.h"
#include "platform/foundation/Fatal.h"
#include "platform/os/FileDescriptor.h"
#include "platform/widgets/Sandbox.h"
#include "platform/widgets/Server.h"

namespace quillpad::widgets {
namespace {

constexpr int wrongUsage = 2;

// The extension's end of the channel, out of the environment, so that nothing that this process
// might start inherits it.
std::optional<FileDescriptor> inheritedChannel() {
  const char* variable = std::getenv(channel::descriptorVariable);
  if (variable == nullptr) {
    return std::nullopt;
  }
  const std::string_view text = variable;
  int number = -1;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  int type = 0;
  socklen_t size = sizeof type;
  if (error != std::errc() || end != text.data() + text.size() ||
      ::getsockopt(number, SOL_SOCKET, SO_TYPE, &type, &size) != 0 || type != SOCK_STREAM) {
    return std::nullopt;
  }
  ::unsetenv(channel::descriptorVariable);
  ::fcntl(number, F_SETFD, FD_CLOEXEC);
  return FileDescriptor(number);
}

}  // namespace

int serve(std::vector<WidgetConfiguration> widgets, Entitlements entitlements) {
  auto socket = inheritedChannel();
  if (!socket) {
    std::fputs(
        "This is the widget extension; the home screen starts it. Run `quillpad-home list` to see "
        "its widgets.\n",
        stderr);
    return wrongUsage;
  }
  forbidCoreFiles();  // the access token may be in memory
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  std::signal(SIGPIPE, SIG_IGN);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);

  if (const auto entered = enterSandbox(entitlements.origins); !entered) {
    std::fprintf(stderr, "%s\n", entered.error().c_str());
    return EXIT_FAILURE;
  }

  Server(
      std::move(widgets),
      std::move(entitlements.linkSchemes),
      std::make_shared<Connection>(std::move(*socket)))
      .run();
  return 0;
}

void leave(int status) {
  std::fflush(nullptr);
  std::_Exit(status);
}

}  // namespace quillpad::widgets
