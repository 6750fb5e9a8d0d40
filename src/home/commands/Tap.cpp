#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <ranges>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "home/commands/Commands.h"
#include "home/commands/Files.h"
#include "home/commands/ViewChoice.h"
#include "home/extension/Links.h"
#include "platform/foundation/Fatal.h"
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

// The widget as the extension lists it, which ends with that.
std::expected<channel::CatalogueItem, Failure> itemOf(
    ExtensionClient extension, const std::string& kind) {
  auto catalogue = extension.ask<channel::Catalogue>(channel::CatalogueRequest{});
  if (!catalogue) {
    return std::unexpected(std::move(catalogue.error()));
  }
  const auto item = std::ranges::find(catalogue->items, kind, &channel::CatalogueItem::kind);
  return item == catalogue->items.end() ? channel::CatalogueItem{} : std::move(*item);
}

// The link is an argument of its own, so no shell reads it, and a URL with a scheme is never an
// option.
Done openLink(const channel::CatalogueItem& widget, const std::string& link) {
  if (!leadsToApplication(widget, link)) {
    return failure(
        ExitStatus::notPossible,
        "the widget's link leads to no application that its extension declares: " + link +
            "; --print prints it");
  }
  std::string program = "xdg-open";
  std::string address = forced(URL::parse(link), "the link").absoluteString();
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
    const auto view = viewOf(*extension, {.kind = kind, .source = EntrySource::snapshot});
    if (!view) {
      return std::unexpected(view.error());
    }
    const auto link = linkOf(*view);
    if (!link) {
      return failure(ExitStatus::notPossible, kind + " has no deep link");
    }
    if (printOnly) {
      return print(*link + '\n');
    }
    const auto widget = itemOf(std::move(*extension), kind);
    return widget ? openLink(*widget, *link) : std::unexpected(widget.error());
  }
};

}  // namespace

Command tapCommand() {
  return command<Tap>("tap", "Open the widget's deep link, as a tap would", "tap KIND --print");
}

}  // namespace quillpad::home
