// A widget's declaration: its kind, its provider, the view of its entries, and how the home screen
// lists it. A value whose provider and views are called on the extension's own thread.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/channel/Messages.h"
#include "platform/ui/Environment.h"
#include "platform/ui/View.h"
#include "platform/widgets/TimelineProvider.h"

namespace quillpad::widgets {

// A declaration with the types of provider and entry gone: what the extension serves.
class WidgetConfiguration {
 public:
  WidgetConfiguration configurationDisplayName(std::string key) &&;
  WidgetConfiguration description(std::string key) &&;
  WidgetConfiguration supportedFamilies(std::vector<ui::WidgetFamily> families) &&;

  std::string kind;
  std::string displayNameKey;
  std::string descriptionKey;
  std::vector<ui::WidgetFamily> families;

  std::function<channel::Entry(const TimelineProviderContext&)> placeholder;
  std::function<void(const TimelineProviderContext&, Completion<channel::Entry>)> snapshot;
  std::function<void(const TimelineProviderContext&, Completion<channel::Timeline>)> timeline;
  // The view of an entry that the home screen sent back; a record of another shape ends the
  // process.
  std::function<ui::View(const ui::Environment&, const channel::Entry&)> render;
};

// Entries and timelines as they cross to the home screen.

template <TimelineEntry Entry>
channel::Entry encoded(const Entry& entry) {
  return {entry.date, entry.data.toValue()};
}

template <TimelineEntry Entry>
channel::Timeline encoded(const Timeline<Entry>& timeline) {
  channel::Timeline result{{}, {timeline.policy.date()}};
  for (const Entry& entry : timeline.entries) {
    result.entries.push_back(encoded(entry));
  }
  return result;
}

// A completion that passes its answer on to `outer` as it crosses to the home screen.
template <class Answer, class Encoded>
Completion<Answer> encoding(Completion<Encoded> outer) {
  return Completion<Answer>([outer = std::move(outer)](std::optional<Answer> answer) mutable {
    if (answer) {
      outer(encoded(*answer));
    }
  });
}

// Binds a kind to its provider and to the content of its entries: content(environment, entry) gives
// the view.
template <TimelineProvider Provider, class Content>
WidgetConfiguration StaticConfiguration(std::string kind, Provider provider, Content content) {
  using Entry = typename Provider::Entry;
  using Context = TimelineProviderContext;
  WidgetConfiguration configuration;
  configuration.kind = std::move(kind);
  configuration.placeholder = [provider](const Context& context) {
    return encoded(provider.placeholder(context));
  };
  configuration.snapshot = [provider](const Context& context, Completion<channel::Entry> end) {
    provider.getSnapshot(context, encoding<Entry>(std::move(end)));
  };
  configuration.timeline = [provider](const Context& context, Completion<channel::Timeline> end) {
    provider.getTimeline(context, encoding<Timeline<Entry>>(std::move(end)));
  };
  configuration.render = [content](
                             const ui::Environment& environment, const channel::Entry& entry) {
    return ui::View(
        content(environment, Entry{entry.date, decltype(Entry::data)::fromValue(entry.data)}));
  };
  return configuration;
}

}  // namespace quillpad::widgets
