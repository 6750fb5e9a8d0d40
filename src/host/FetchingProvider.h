// What all providers have in common: one entry per timeline, freshly fetched, and the next one five
// minutes later. A stateless value; completions of a timeline are called on the thread of the URL
// session.
#pragma once

#include <chrono>
#include <utility>

#include "platform/foundation/Clock.h"
#include "platform/widgets/TimelineProvider.h"

namespace quillpad {

// `fetch` starts a request with a FetchCallback; `fallback()` is what its result would be, shown
// before anything is fetched and where the transport failed. The entry's record is made of either.
template <class EntryType, auto fetch, auto fallback>
struct FetchingProvider {
  using Entry = EntryType;
  using Context = widgets::TimelineProviderContext;

  Entry placeholder(const Context&) const { return entry(currentDate(), fallback()); }

  void getSnapshot(const Context& context, widgets::Completion<Entry> completion) const {
    completion(placeholder(context));
  }

  void getTimeline(const Context&, widgets::Completion<widgets::Timeline<Entry>> completion) const {
    const Date now = currentDate();
    fetch([now, completion = std::move(completion)](const auto& result) mutable {
      const Entry fetched = entry(now, result ? *result : fallback());
      const Date nextUpdate = now + std::chrono::minutes(5);
      completion(
          {.entries = {fetched}, .policy = widgets::TimelineReloadPolicy::after(nextUpdate)});
    });
  }

 private:
  template <class Fetched>
  static Entry entry(Date date, Fetched fetched) {
    return {date, {std::move(fetched)}};
  }
};

}  // namespace quillpad
