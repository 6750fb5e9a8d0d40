// placeholder, snapshot and timeline: what a widget's provider answers.
#include "home/commands/Commands.h"
#include "home/commands/Printing.h"
#include "home/commands/ViewChoice.h"

namespace quillpad::home {
namespace {

struct Show {
  EntryState state = EntryState::timeline;
  std::string kind{};
  bool json = false;

  void declare(Options& options) {
    options.kind(kind);
    options.flag("--json", json, "Print JSON");
  }

  Done run(const CommandContext& context) const {
    auto extension = ExtensionClient::start(context.extension);
    if (!extension) {
      return std::unexpected(extension.error());
    }
    switch (state) {
      case EntryState::placeholder:
        return printAnswer(extension->ask<channel::Entry>(channel::PlaceholderRequest{kind}), json);
      case EntryState::snapshot:
        return printAnswer(extension->ask<channel::Entry>(channel::SnapshotRequest{kind}), json);
      case EntryState::timeline:
        break;
    }
    const auto timeline = extension->ask<channel::Timeline>(channel::TimelineRequest{kind});
    reportFailedTransfers(extension->transfers());
    return printAnswer(timeline, json);
  }
};

}  // namespace

Command placeholderCommand() {
  return command(
      "placeholder",
      "Print the widget's placeholder",
      "placeholder KIND",
      Show{.state = EntryState::placeholder});
}

Command snapshotCommand() {
  return command(
      "snapshot",
      "Print the widget's snapshot",
      "snapshot KIND --json",
      Show{.state = EntryState::snapshot});
}

Command timelineCommand() {
  return command(
      "timeline",
      "Fetch the widget's timeline and print it",
      "timeline KIND",
      Show{.state = EntryState::timeline});
}

}  // namespace quillpad::home
