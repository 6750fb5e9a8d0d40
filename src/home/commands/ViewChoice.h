// Which entry of a widget is drawn, and as which family: the options that `render` and `tree`
// share, and how the view is asked for.
#pragma once

#include <expected>
#include <optional>
#include <string>

#include "home/commands/Options.h"
#include "home/extension/ExtensionClient.h"
#include "home/extension/Failure.h"
#include "platform/paint/Card.h"
#include "platform/ui/Environment.h"
#include "platform/ui/View.h"

namespace quillpad::home {

enum class EntryState { placeholder, snapshot, timeline };

// The option --state.
void declareState(Options& options, EntryState& state);

struct ViewChoice {
  std::string kind{};
  EntryState state = EntryState::timeline;
  std::string entryFile{};                   // an entry of one's own in place of the state's
  std::optional<ui::WidgetFamily> family{};  // absent: the kind's own

  void declare(Options& options);

  // A placeholder shows no figures: nothing was fetched yet.
  drawing::Redaction redaction() const {
    return entryFile.empty() && state == EntryState::placeholder ? drawing::Redaction::placeholder
                                                                 : drawing::Redaction::none;
  }
};

std::expected<ui::View, Failure> viewOf(ExtensionClient& extension, const ViewChoice& choice);

// A failed transfer shows in the answer as zeros or a sample; this reports it on standard error.
void reportFailedTransfers(const ExtensionClient& extension);

}  // namespace quillpad::home
