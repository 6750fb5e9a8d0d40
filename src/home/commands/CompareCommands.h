// The commands that watch over pictures: compare, and gallery --check. A difference is a failure.
#pragma once

#include <filesystem>

#include "home/commands/WidgetCommands.h"
#include "home/extension/ExtensionClient.h"
#include "home/extension/Failure.h"
#include "platform/paint/Comparison.h"

namespace quillpad::home {

struct CompareChoice {
  std::filesystem::path expected;
  std::filesystem::path actual;
  std::filesystem::path output;  // a picture of what differs; empty: none
  drawing::Tolerance tolerance;
};

// Compares two PNG files.
Done compare(const CompareChoice& choice);

struct CheckChoice {
  std::filesystem::path recorded;  // a folder that gallery wrote
  std::filesystem::path output;    // a folder for the page of changes; empty: none
  EntryState state = EntryState::timeline;
  int scale = 2;
  drawing::Tolerance tolerance;
};

// Draws the gallery and compares it with the recorded one: which pictures changed, appeared or
// went. The page shows the expected picture, the actual one and the difference side by side.
Done checkGallery(ExtensionClient& extension, const CheckChoice& choice);

}  // namespace quillpad::home
