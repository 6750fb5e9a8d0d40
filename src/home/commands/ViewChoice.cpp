#include "home/commands/ViewChoice.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "home/commands/Files.h"
#include "platform/foundation/Json.h"

namespace quillpad::home {
namespace {

std::expected<channel::Entry, Failure> entryInFile(const std::string& file) {
  const auto text = readInput(file, channel::maxFrame);
  if (!text) {
    return std::unexpected(text.error());
  }
  const auto document = readJson(*text, JsonFragments::allowed);
  if (!document) {
    return failure(
        ExitStatus::wrongUsage, inputName(file) + " is not JSON: " + document.error().reason);
  }
  const Decoder d(*document);
  auto entry = d.result(channel::entryFrom(d));
  if (!entry) {
    return failure(ExitStatus::wrongUsage, inputName(file) + " is not an entry: " + entry.error());
  }
  return *std::move(entry);
}

std::expected<channel::Entry, Failure> entryInState(
    ExtensionClient& extension, EntryState state, const std::string& kind) {
  if (state == EntryState::timeline) {
    auto timeline = extension.ask<channel::Timeline>(channel::TimelineRequest{kind});
    reportFailedTransfers(extension);
    if (!timeline) {
      return std::unexpected(timeline.error());
    }
    if (timeline->entries.empty()) {
      return failure(ExitStatus::notPossible, "the timeline of " + kind + " has no entry to draw");
    }
    return std::move(timeline->entries.front());
  }
  const channel::Request request = state == EntryState::snapshot
                                       ? channel::Request(channel::SnapshotRequest{kind})
                                       : channel::Request(channel::PlaceholderRequest{kind});
  return extension.ask<channel::Entry>(request);
}

}  // namespace

void declareState(Options& options, EntryState& state) {
  static constexpr std::array<Choice<EntryState>, 3> states{
      {{"placeholder", EntryState::placeholder},
       {"snapshot", EntryState::snapshot},
       {"timeline", EntryState::timeline}}};
  options.choice<EntryState>("--state", state, "The entry to draw", states);
}

void ViewChoice::declare(Options& options) {
  options.kind(kind);
  declareState(options, state);
  options.text("--entry", entryFile, "An entry of your own, as snapshot --json prints it", "FILE");
  static constexpr auto families = [] {
    std::array<Choice<std::optional<ui::WidgetFamily>>, ui::widgetFamilyNames.size()> all{};
    std::ranges::transform(ui::widgetFamilyNames, all.begin(), [](const auto& named) {
      return Choice<std::optional<ui::WidgetFamily>>{named.name, named.value};
    });
    return all;
  }();
  options.choice<std::optional<ui::WidgetFamily>>(
      "--family", family, "The widget's size class; the content is the same in each", families);
}

std::expected<ui::View, Failure> viewOf(ExtensionClient& extension, const ViewChoice& choice) {
  const auto entry = choice.entryFile.empty() ? entryInState(extension, choice.state, choice.kind)
                                              : entryInFile(choice.entryFile);
  if (!entry) {
    return std::unexpected(entry.error());
  }
  auto rendering = extension.ask<channel::Rendering>(
      channel::RenderRequest{choice.kind, *entry, choice.family, {}});
  if (!rendering) {
    return std::unexpected(rendering.error());
  }
  return std::move(rendering->view);
}

void reportFailedTransfers(const ExtensionClient& extension) {
  for (const TransferReport& transfer : extension.transfers()) {
    if (transfer.error) {
      std::fprintf(
          stderr,
          "quillpad-home: a transfer failed (%s); fallback data stands in\n",
          transfer.error->localizedDescription.c_str());
    }
  }
}

}  // namespace quillpad::home
