#include <array>
#include <cerrno>
#include <optional>
#include <ranges>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "home/commands/Commands.h"
#include "home/commands/Files.h"
#include "home/commands/ViewChoice.h"
#include "platform/foundation/URL.h"

namespace quillpad::home {
namespace {

// The link on the outermost view that has one.
std::optional<std::string> linkOf(const ui::View& view) {
  for (const ui::Modifier& modifier : view.modifiers | std::views::reverse) {
    if (const auto* link = std::get_if<ui::WidgetUrl>(&modifier)) {
      return link->address;
    }
  }
  if (const auto* stack = std::get_if<ui::Stack>(&view.content)) {
    for (const ui::View& child : stack->children) {
      if (auto link = linkOf(child)) {
        return link;
      }
    }
  }
  return std::nullopt;
}

// The link is an argument of its own, so no shell reads it, and a parsed URL is never an option.
Done openLink(const std::string& link) {
  const auto url = URL::parse(link);
  if (!url || url->scheme().empty()) {
    return failure(ExitStatus::notPossible, "the widget's link is not a URL: " + link);
  }
  std::string program = "xdg-open";
  std::string address = url->absoluteString();
  const std::array<char*, 3> arguments{program.data(), address.data(), nullptr};
  pid_t child = 0;
  if (::posix_spawnp(&child, program.c_str(), nullptr, nullptr, arguments.data(), environ) != 0) {
    return failure(
        ExitStatus::notPossible,
        "cannot open " + link +
            ": xdg-open is not installed (package xdg-utils); --print prints the link");
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    return failure(
        ExitStatus::notPossible, "no application here opens " + link + "; --print prints it");
  }
  return {};
}

struct Tap {
  std::string kind{};
  bool printOnly = false;

  void declare(Options& options) {
    options.kind(kind);
    options.flag("--print", printOnly, "Print the link instead");
  }

  Done run(const CommandContext& context) const {
    auto extension = ExtensionClient::start(context.extension);
    if (!extension) {
      return std::unexpected(extension.error());
    }
    const auto view = viewOf(*extension, {.kind = kind, .state = EntryState::snapshot});
    if (!view) {
      return std::unexpected(view.error());
    }
    const auto link = linkOf(*view);
    if (!link) {
      return failure(ExitStatus::notPossible, kind + " has no deep link");
    }
    return printOnly ? print(*link + '\n') : openLink(*link);
  }
};

}  // namespace

Command tapCommand() {
  return command<Tap>("tap", "Open the widget's deep link, as a tap would", "tap KIND --print");
}

}  // namespace quillpad::home
