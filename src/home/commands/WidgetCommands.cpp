#include "home/commands/WidgetCommands.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <ranges>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "home/commands/EntryText.h"
#include "home/commands/Files.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/URL.h"

namespace quillpad::home {
namespace {

Done printJson(const Value& value) {
  const auto text = writeJson(value, JsonLayout::compact);
  if (!text) {
    return failure(ExitStatus::notPossible, "the answer is no JSON: " + text.error().reason);
  }
  return print(*text + '\n');
}

template <class Answer>
Done askAndPrint(ExtensionClient& extension, const channel::Request& request, OutputForm form) {
  const auto answer = extension.ask<Answer>(request);
  tellFailedTransfers(extension);
  if (!answer) {
    return std::unexpected(answer.error());
  }
  if (form == OutputForm::text) {
    return print(describe(*answer));
  }
  if constexpr (std::same_as<Answer, channel::Entry>) {
    return printJson(answer->entry);
  } else {
    return printJson(channel::toValue(*answer));
  }
}

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

std::expected<std::string, Failure> linkOf(ExtensionClient& extension, const std::string& kind) {
  const auto snapshot = extension.ask<channel::Entry>(channel::SnapshotRequest{kind});
  if (!snapshot) {
    return std::unexpected(snapshot.error());
  }
  const auto rendering = extension.ask<channel::Rendering>(
      channel::RenderRequest{kind, snapshot->entry, std::nullopt, {}});
  if (!rendering) {
    return std::unexpected(rendering.error());
  }
  auto link = linkOf(rendering->view);
  if (!link) {
    return failure(ExitStatus::notPossible, kind + " has no deep link");
  }
  return std::move(*link);
}

// The link is an argument of its own, so no shell reads it, and a parsed URL is never an option.
Done openLink(const std::string& link) {
  const auto url = URL::parse(link);
  if (!url || url->scheme().empty()) {
    return failure(ExitStatus::notPossible, "the widget's link is no URL: " + link);
  }
  std::string program = "xdg-open";
  std::string address = url->absoluteString();
  const std::array<char*, 3> arguments{program.data(), address.data(), nullptr};
  pid_t child = 0;
  if (::posix_spawnp(&child, program.c_str(), nullptr, nullptr, arguments.data(), environ) != 0) {
    return failure(
        ExitStatus::notPossible,
        "xdg-open is not installed (package xdg-utils), so " + link +
            " cannot be opened; --print prints it");
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

}  // namespace

void tellFailedTransfers(const ExtensionClient& extension) {
  for (const TransferReport& transfer : extension.transfers()) {
    if (transfer.error) {
      std::fprintf(
          stderr,
          "quillpad-home: the gateway was not reached (%s); the figures are stand-ins\n",
          transfer.error->localizedDescription.c_str());
    }
  }
}

Done list(ExtensionClient& extension, OutputForm form) {
  return askAndPrint<channel::Catalogue>(extension, channel::CatalogueRequest{}, form);
}

Done show(ExtensionClient& extension, EntryState state, const std::string& kind, OutputForm form) {
  switch (state) {
    case EntryState::placeholder:
      return askAndPrint<channel::Entry>(extension, channel::PlaceholderRequest{kind}, form);
    case EntryState::snapshot:
      return askAndPrint<channel::Entry>(extension, channel::SnapshotRequest{kind}, form);
    case EntryState::timeline:
      break;
  }
  return askAndPrint<channel::Timeline>(extension, channel::TimelineRequest{kind}, form);
}

Done tap(ExtensionClient& extension, const std::string& kind, TapAction action) {
  const auto link = linkOf(extension, kind);
  if (!link) {
    return std::unexpected(link.error());
  }
  return action == TapAction::print ? print(*link + '\n') : openLink(*link);
}

}  // namespace quillpad::home
