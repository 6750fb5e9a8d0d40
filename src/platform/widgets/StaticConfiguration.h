// A widget's declaration: its kind, its provider, the view of its entries, and how the home screen
// lists it. A value whose provider and views are called on the extension's own thread.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/foundation/Clock.h"
#include "platform/foundation/Fatal.h"
#include "platform/foundation/Value.h"
#include "platform/ui/Environment.h"
#include "platform/ui/View.h"
#include "platform/widgets/TimelineProvider.h"

namespace quillpad::widgets {

// Entries as they cross to the home screen: {"date", "data"}.
struct EncodedTimeline {
  std::vector<Value> entries;
  Date reloadAfter;
};

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

  std::function<Value(const TimelineProviderContext&)> placeholder;
  std::function<void(const TimelineProviderContext&, Completion<Value>)> snapshot;
  std::function<void(const TimelineProviderContext&, Completion<EncodedTimeline>)> timeline;
  // The view of an entry that the home screen sent back; an entry of another shape ends the
  // process.
  std::function<ui::View(const ui::Environment&, const Value& entry)> render;
};

template <TimelineEntry Entry>
Value encoded(const Entry& entry) {
  return Dictionary{{"date", iso8601(entry.date)}, {"data", entry.data.toValue()}};
}

template <TimelineEntry Entry>
Entry decodedEntry(const Value& value) {
  using RecordType = decltype(Entry::data);
  const auto& members = forcedAs<Dictionary>(value, "the entry");
  const auto& date = forcedMember<std::string>(members, "date");
  return {
      forced(dateFromIso8601(date), "the entry's date"),
      RecordType::fromValue(forced(members.find("data"), "the entry's data"))};
}

// Binds a kind to its provider and to the content of its entries: content(environment, entry) gives
// the view.
template <TimelineProvider Provider, class Content>
WidgetConfiguration StaticConfiguration(std::string kind, Provider provider, Content content) {
  using Entry = typename Provider::Entry;
  WidgetConfiguration configuration;
  configuration.kind = std::move(kind);
  configuration.placeholder = [provider](const TimelineProviderContext& context) {
    return Value(encoded(provider.placeholder(context)));
  };
  configuration.snapshot = [provider](
                               const TimelineProviderContext& context,
                               Completion<Value> completion) {
    provider.getSnapshot(context, forwarding<Entry>(std::move(completion), [](const Entry& entry) {
                           return encoded(entry);
                         }));
  };
  configuration.timeline =
      [provider](const TimelineProviderContext& context, Completion<EncodedTimeline> completion) {
        provider.getTimeline(
            context,
            forwarding<Timeline<Entry>>(std::move(completion), [](const Timeline<Entry>& timeline) {
              EncodedTimeline result{{}, timeline.policy.date()};
              for (const Entry& entry : timeline.entries) {
                result.entries.push_back(encoded(entry));
              }
              return result;
            }));
      };
  configuration.render = [content](const ui::Environment& environment, const Value& entry) {
    return ui::View(content(environment, decodedEntry<Entry>(entry)));
  };
  return configuration;
}

}  // namespace quillpad::widgets
