// The commands that ask the extension and print its answer: list, placeholder, snapshot, timeline,
// tap.
#pragma once

#include <string>

#include "home/extension/ExtensionClient.h"
#include "home/extension/Failure.h"

namespace quillpad::home {

enum class OutputForm { text, json };
enum class EntryState { placeholder, snapshot, timeline };

Done list(ExtensionClient& extension, OutputForm form);

Done show(ExtensionClient& extension, EntryState state, const std::string& kind, OutputForm form);

// A failed transfer shows in the answer as zeros or sample rows; this tells of it on standard
// error.
void tellFailedTransfers(const ExtensionClient& extension);

enum class TapAction { open, print };

// Opens the deep link of the widget's snapshot with the desktop's handler, or prints it.
Done tap(ExtensionClient& extension, const std::string& kind, TapAction action);

}  // namespace quillpad::home
