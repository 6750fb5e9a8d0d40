#include "home/commands/GalleryPlan.h"

#include <algorithm>
#include <utility>

#include "home/cards/Samples.h"
#include "home/cards/WidgetSizes.h"
#include "home/commands/ViewChoice.h"
#include "platform/foundation/Decoder.h"
#include "platform/foundation/Locale.h"

namespace quillpad::home {
namespace {

using Answer = ExtensionClient::Answer;

// Recordings from samples look the same on every machine.
constexpr const char* recordedLocale = "en_US";
constexpr const char* recordedCurrency = "$";

// An entry of one of the widgets under the name that it has in the gallery.
struct NamedEntry {
  std::size_t widget = 0;
  std::string name;
  bool redacted = false;
  std::expected<channel::Entry, Failure> entry;
};

// A kind or a sample as part of a file's name.
std::string fileNamePart(std::string name) {
  std::ranges::replace_if(
      name, [](unsigned char c) { return c == '/' || c < ' ' || c == 0x7F; }, '_');
  return name;
}

class Planner {
 public:
  Planner(ExtensionBatch& extension, const GallerySettings& settings)
      : extension_(extension), settings_(settings) {}

  std::expected<GalleryPlan, Failure> plan() {
    const channel::Request catalogueRequest = channel::CatalogueRequest{};
    auto catalogue = ExtensionClient::as<channel::Catalogue>(
        std::move(extension_.ask({&catalogueRequest, 1}).front()));
    if (!catalogue) {
      return std::unexpected(catalogue.error());
    }
    widgets_ = std::move(catalogue->items);
    for (const channel::CatalogueItem& item : widgets_) {
      plan_.widgets.push_back(
          {.kind = fileNamePart(item.kind),
           .displayName = item.displayName,
           .description = item.description,
           .pictures = {}});
    }
    if (auto found = findEntries(); !found) {
      return std::unexpected(found.error());
    }
    render();
    if (plan_.cards.empty()) {
      return failure(
          plan_.failure ? plan_.failure->status : ExitStatus::notPossible,
          plan_.failure ? plan_.failure->message : "there is nothing to draw");
    }
    return std::move(plan_);
  }

 private:
  bool isFromSamples() const { return settings_.entries == EntrySource::given; }

  std::vector<EntrySource> sources() const {
    if (settings_.all && !settings_.entries) {
      return {EntrySource::placeholder, EntrySource::snapshot, EntrySource::timeline};
    }
    return {settings_.entries.value_or(EntrySource::timeline)};
  }

  Done findEntries() {
    std::vector<channel::Request> requests;
    for (const EntrySource source : sources()) {
      for (const channel::CatalogueItem& item : widgets_) {
        requests.push_back(requestFor(isFromSamples() ? EntrySource::snapshot : source, item.kind));
      }
    }
    std::vector<Answer> answers = extension_.ask(requests);
    reportFailedTransfers(extension_.transfers());
    std::size_t next = 0;
    for (const EntrySource source : sources()) {
      for (std::size_t widget = 0; widget < widgets_.size(); ++widget) {
        auto entry = entryIn(std::move(answers[next++]), widgets_[widget].kind);
        if (!isFromSamples()) {
          entries_.push_back(
              {.widget = widget,
               .name = std::string(nameOf(gallerySources, source)),
               .redacted = source == EntrySource::placeholder,
               .entry = std::move(entry)});
        } else if (Done added = addSamples(widget, entry); !added) {
          return added;
        }
      }
    }
    return {};
  }

  // Those that are made for what the widget shows.
  Done addSamples(std::size_t widget, const std::expected<channel::Entry, Failure>& snapshot) {
    const SampleFolder folder(settings_.samples);
    const auto samples = folder.read();
    if (!samples) {
      return failure(ExitStatus::notPossible, samples.error());
    }
    for (const SampleFolder::Sample& sample : *samples) {
      auto entry = folder.entry(sample.name);
      if (!entry) {
        return failure(ExitStatus::wrongUsage, entry.error());
      }
      if (!snapshot || suits(*entry, snapshot->data)) {
        entries_.push_back({.widget = widget, .name = sample.name, .entry = *std::move(entry)});
      }
    }
    return {};
  }

  std::vector<std::string> localesOf(const channel::CatalogueItem& item) const {
    if (settings_.all && !item.languages.empty()) {
      return item.languages;
    }
    const bool isFixed = isFromSamples() && settings_.locale.empty();
    return {isFixed ? recordedLocale : settings_.locale};
  }

  void render() {
    const std::string currency =
        isFromSamples() && settings_.currency.empty() ? recordedCurrency : settings_.currency;
    struct Rendering {
      const NamedEntry* of;
      std::string locale;
    };
    std::vector<Rendering> renderings;
    std::vector<channel::Request> requests;
    for (const NamedEntry& each : entries_) {
      const channel::CatalogueItem& item = widgets_[each.widget];
      for (const std::string& locale : localesOf(item)) {
        if (!each.entry) {
          addCards(each, nullptr, locale, each.entry.error());
          continue;
        }
        renderings.push_back({&each, locale});
        requests.emplace_back(
            channel::RenderRequest{item.kind, *each.entry, familyOf(item), locale, currency});
      }
    }
    std::vector<Answer> answers = extension_.ask(requests);
    plan_.views.reserve(answers.size());  // they stay where they are
    for (std::size_t i = 0; i < answers.size(); ++i) {
      auto rendering = ExtensionClient::as<channel::Rendering>(std::move(answers[i]));
      const ui::View* view = nullptr;
      if (rendering) {
        view = &plan_.views.emplace_back(std::move(rendering->view));
      }
      addCards(
          *renderings[i].of,
          view,
          renderings[i].locale,
          rendering ? std::nullopt : std::optional(rendering.error()));
    }
  }

  // The cards of a view, on each screen; where there is no view, they are missing.
  void addCards(
      const NamedEntry& of,
      const ui::View* view,
      const std::string& locale,
      const std::optional<Failure>& failure) {
    const channel::CatalogueItem& item = widgets_[of.widget];
    const ui::WidgetFamily family = familyOf(item);
    const auto sizes = settings_.all ? screens() : screens().first(1);
    for (const std::string_view screen : sizes) {
      std::string stem = fileNamePart(item.kind);
      std::string title = item.displayName;
      if (settings_.all || isFromSamples()) {
        stem += "-" + fileNamePart(of.name);
        title += ", " + of.name;
      }
      if (settings_.all) {
        stem.append("-").append(screen).append("-").append(locale);
        title.append(", ").append(screen).append(", ").append(locale);
      }
      if (view == nullptr) {
        plan_.missing.push_back(stem);
        plan_.failure = plan_.failure ? plan_.failure : failure;
        continue;
      }
      plan_.cards.push_back(
          {.widget = of.widget,
           .stem = std::move(stem),
           .title = std::move(title),
           .entry = of.name,
           .screen = std::string(screen),
           .language = locale,
           .drawing = {
               .view = view,
               .request =
                   {.kind = item.kind,
                    .family = std::string(ui::familyName(family)),
                    .size = widgetSize(family, screen),
                    .scale = settings_.scale,
                    .redacted = of.redacted},
               .locale = locale.empty() ? currentLocale() : locale}});
    }
  }

  ExtensionBatch& extension_;
  const GallerySettings& settings_;
  std::vector<channel::CatalogueItem> widgets_;
  std::vector<NamedEntry> entries_;
  GalleryPlan plan_;
};

}  // namespace

Value GallerySettings::toValue() const {
  return Dictionary{
      {"entries", entries ? Value(nameOf(gallerySources, *entries)) : Value(Null())},
      {"all", all},
      {"scale", scale},
      {"locale", locale},
      {"currency", currency}};
}

std::expected<GallerySettings, std::string> GallerySettings::fromValue(const Value& value) {
  const Decoder d(value);
  GallerySettings settings;
  if (const Decoder entries = d["entries"]; entries.value() != Value(Null())) {
    settings.entries = entries.oneOf(gallerySources);
  }
  settings.all = d["all"].boolean();
  settings.scale = d["scale"].whole<int>(1, 3);
  settings.locale = d["locale"].text();
  settings.currency = d["currency"].text();
  return d.result(std::move(settings));
}

Done GalleryPlan::outcome() const {
  if (!failure) {
    return {};
  }
  return home::failure(
      failure->status,
      std::to_string(missing.size()) + " of " + std::to_string(missing.size() + cards.size()) +
          " cards could not be drawn, first " + missing.front() + ": " + failure->message);
}

std::expected<GalleryPlan, Failure> planGallery(
    ExtensionBatch& extension, const GallerySettings& settings) {
  return Planner(extension, settings).plan();
}

}  // namespace quillpad::home
