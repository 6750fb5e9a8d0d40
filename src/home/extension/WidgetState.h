// What a widget shows and what it met. Plain values.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "home/extension/EntrySource.h"
#include "home/extension/Problem.h"
#include "platform/channel/Messages.h"
#include "platform/foundation/TransferReport.h"
#include "platform/foundation/Value.h"
#include "platform/ui/View.h"

namespace quillpad::home {

// The failure of a transfer, and since when every one has failed.
struct FailedTransfer : TransportError {
  Date since{};
};

using SharedView = std::shared_ptr<const ui::View>;

// An entry and what it looks like.
struct RenderedEntry {
  EntrySource source = EntrySource::placeholder;
  channel::Entry entry;
  // What it looks like, a spacer until it is rendered. The same pointer is the same picture.
  SharedView view = std::make_shared<const ui::View>(ui::Spacer{});
  Date received;
  // The transfer behind the entry failed: what it shows stands in for real data.
  std::optional<FailedTransfer> failure{};
  int statusCode = 0;     // of the response behind the entry; 0 where there is none
  bool restored = false;  // from an earlier run of the home screen
};

// A placed widget as the page shows it. The pointers are good until the supervisor's next event.
struct WidgetState {
  const channel::CatalogueItem* about = nullptr;
  const RenderedEntry* picture = nullptr;  // nullptr until there is a first one
  const RenderedEntry* kept =
      nullptr;  // the last one from a transfer that went well, where this one's failed
  const Problem* problem = nullptr;  // nullptr: none
  std::optional<Date> reload{};      // when it is asked for next, if that is known
  bool overdue = false;              // it was to be renewed a while ago, or never will be
  bool awaited = false;              // a person waits for a newer one, or it is slow
  std::optional<Date> slowSince{};   // when it was asked for, where that is a while ago
  std::uint64_t version = 0;         // grows whenever any of this changes
};

// What outlives the home screen.
struct SavedHome {
  std::vector<channel::CatalogueItem> catalogue{};
  std::vector<std::string> placed{};
  std::map<std::string, RenderedEntry> pictures{};  // by kind; of timelines alone
  std::map<std::string, RenderedEntry> kept{};      // by kind; see WidgetState
  std::optional<std::string> account{};             // whose they are; see Account
};

}  // namespace quillpad::home
