// Which entry of a widget is drawn, and as which family: the options that `render` and `tree`
// share, and how the view is asked for.
#pragma once

#include <expected>
#include <optional>
#include <span>
#include <string>

#include "home/commands/ExtensionClient.h"
#include "home/commands/Failure.h"
#include "home/commands/Options.h"
#include "home/extension/EntrySource.h"
#include "platform/ui/Environment.h"
#include "platform/ui/View.h"

namespace quillpad::home {

// The options --locale and --currency.
void declareRegion(Options& options, std::string& locale, std::string& currency);

// The option --samples.
void declareSamples(Options& options, std::string& folder);

struct ViewChoice {
  std::string kind{};
  std::optional<EntrySource> source{};       // absent: the timeline's entry
  std::string entryFile{};                   // an entry of one's own in place of the source's
  std::string sample{};                      // or one of the samples
  std::string sampleFolder{};                // empty: those that come with the programs
  std::optional<ui::WidgetFamily> family{};  // absent: the kind's own
  std::string locale{};                      // empty: that of this process
  std::string currency{};                    // empty: that of the settings

  void declare(Options& options);

  std::string localeOrOwn() const;  // the one chosen, or that of this process
};

// The entry that the provider answered with, of a timeline the first.
std::expected<channel::Entry, Failure> entryIn(
    ExtensionClient::Answer answer, const std::string& kind);

std::expected<ui::View, Failure> viewOf(ExtensionClient& extension, const ViewChoice& choice);

// A failed transfer shows in the answer as zeros or a sample; this reports it on standard error.
void reportFailedTransfers(std::span<const TransferReport> transfers);

}  // namespace quillpad::home
