// Where an entry comes from: a widget's provider is asked for it in one of three ways, or it is
// given, as a sample or by hand. Values and pure functions.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "platform/channel/Messages.h"
#include "platform/foundation/Named.h"

namespace quillpad::home {

enum class EntrySource { placeholder, snapshot, timeline, given };

inline constexpr std::array providerSources{
    Named{"placeholder", EntrySource::placeholder},
    Named{"snapshot", EntrySource::snapshot},
    Named{"timeline", EntrySource::timeline}};

// These with a name for what is given.
constexpr std::array<Named<EntrySource>, 4> sourcesWithGiven(std::string_view name) {
  const auto& [placeholder, snapshot, timeline] = providerSources;
  return {placeholder, snapshot, timeline, {name, EntrySource::given}};
}

// The request for the entry, which is not given.
channel::Request requestFor(EntrySource source, const std::string& kind);

}  // namespace quillpad::home
