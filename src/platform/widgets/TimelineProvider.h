// What a widget's provider offers: a stateless value with these three operations and its entry's
// type as `Entry`. They are called on the extension's own thread; completions may be called from
// any.
#pragma once

#include <concepts>

#include "platform/widgets/Completion.h"
#include "platform/widgets/Timeline.h"

namespace quillpad::widgets {

// The circumstances of a request.
struct TimelineProviderContext {
  bool isPreview = false;
};

template <class T>
concept TimelineProvider = TimelineEntry<typename T::Entry> &&
                           requires(
                               const T& provider,
                               const TimelineProviderContext& context,
                               Completion<typename T::Entry> snapshotCompletion,
                               Completion<Timeline<typename T::Entry>> timelineCompletion) {
                             { provider.placeholder(context) } -> std::same_as<typename T::Entry>;
                             provider.getSnapshot(context, std::move(snapshotCompletion));
                             provider.getTimeline(context, std::move(timelineCompletion));
                           };

}  // namespace quillpad::widgets
