// placeholder, snapshot and timeline: what a widget's provider answers.
#include "home/commands/Commands.h"
#include "home/commands/Printing.h"
#include "home/commands/ViewChoice.h"

namespace quillpad::home {
namespace {

struct Show {
  EntrySource source = EntrySource::timeline;
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
    const channel::Request request = requestFor(source, kind);
    if (source != EntrySource::timeline) {
      return printAnswer(extension->ask<channel::Entry>(request), json);
    }
    const auto timeline = extension->ask<channel::Timeline>(request);
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
      Show{.source = EntrySource::placeholder});
}

Command snapshotCommand() {
  return command(
      "snapshot",
      "Print the widget's snapshot",
      "snapshot KIND --json",
      Show{.source = EntrySource::snapshot});
}

Command timelineCommand() {
  return command(
      "timeline",
      "Fetch the widget's timeline and print it",
      "timeline KIND",
      Show{.source = EntrySource::timeline});
}

}  // namespace quillpad::home
