#include "home/commands/PictureCommands.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "home/commands/Files.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/Locale.h"
#include "platform/paint/CardSize.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad::home {
namespace {

std::expected<Value, Failure> entryInFile(const std::string& file) {
  const auto text = readInput(file, channel::longestFrame);
  if (!text) {
    return std::unexpected(text.error());
  }
  auto entry = readJson(*text, JsonFragments::allowed);
  if (!entry) {
    return failure(
        ExitStatus::wrongUsage, inputName(file) + " is not JSON: " + entry.error().reason);
  }
  return std::move(*entry);
}

std::expected<Value, Failure> entryInState(
    ExtensionClient& extension, EntryState state, const std::string& kind) {
  if (state == EntryState::timeline) {
    auto timeline = extension.ask<channel::Timeline>(channel::TimelineRequest{kind});
    tellFailedTransfers(extension);
    if (!timeline) {
      return std::unexpected(timeline.error());
    }
    if (timeline->entries.empty()) {
      return failure(ExitStatus::notPossible, "the timeline of " + kind + " has no entry to draw");
    }
    return std::move(timeline->entries.front());
  }
  const channel::Request request = state == EntryState::snapshot
                                       ? channel::Request(channel::SnapshotRequest{kind})
                                       : channel::Request(channel::PlaceholderRequest{kind});
  auto entry = extension.ask<channel::Entry>(request);
  if (!entry) {
    return std::unexpected(entry.error());
  }
  return std::move(entry->entry);
}

std::expected<ui::View, Failure> viewOf(ExtensionClient& extension, const ViewChoice& choice) {
  const auto entry = choice.entryFile.empty() ? entryInState(extension, choice.state, choice.kind)
                                              : entryInFile(choice.entryFile);
  if (!entry) {
    return std::unexpected(entry.error());
  }
  auto rendering = extension.ask<channel::Rendering>(
      channel::RenderRequest{choice.kind, *entry, choice.family, {}});
  if (!rendering) {
    return std::unexpected(rendering.error());
  }
  return std::move(rendering->view);
}

// The family to draw: the one chosen, or the kind's own.
std::expected<ui::WidgetFamily, Failure> familyOf(
    ExtensionClient& extension, const ViewChoice& choice) {
  if (choice.family) {
    return *choice.family;
  }
  const auto catalogue = extension.ask<channel::Catalogue>(channel::CatalogueRequest{});
  if (!catalogue) {
    return std::unexpected(catalogue.error());
  }
  const auto item = std::ranges::find(catalogue->items, choice.kind, &channel::CatalogueItem::kind);
  if (item == catalogue->items.end() || item->families.empty()) {
    return failure(
        ExitStatus::wrongUsage,
        "there is no widget of kind \"" + choice.kind +
            R"("; "quillpad-home list" shows the kinds)");
  }
  return item->families.front();
}

std::expected<std::string, Failure> draw(
    CardRenderer& cards,
    const drawing::DisplayList& list,
    PictureFormat format,
    ui::Appearance appearance) {
  auto bytes = cards.write(list, format, appearance);
  if (!bytes) {
    return failure(ExitStatus::wrongUsage, bytes.error());
  }
  return std::move(*bytes);
}

}  // namespace

Done render(ExtensionClient& extension, const RenderChoice& choice) {
  const auto family = familyOf(extension, choice.view);
  if (!family) {
    return std::unexpected(family.error());
  }
  const drawing::Size size = choice.size.value_or(defaultSize(*family));
  if (const auto error = drawing::sizeError(size, choice.scale)) {
    return failure(ExitStatus::wrongUsage, *error);
  }

  const auto view = viewOf(extension, choice.view);
  if (!view) {
    return std::unexpected(view.error());
  }
  CardRenderer cards;
  const drawing::DisplayList list = cards.compose(
      *view,
      {.kind = choice.view.kind,
       .family = std::string(channel::familyName(*family)),
       .size = size,
       .scale = choice.scale},
      currentLocale());
  const auto bytes = draw(cards, list, choice.format, choice.appearance);
  if (!bytes) {
    return std::unexpected(bytes.error());
  }
  return choice.output == "-" ? print(*bytes) : writeOutput(choice.output, *bytes);
}

Done tree(ExtensionClient& extension, const ViewChoice& choice) {
  const auto view = viewOf(extension, choice);
  if (!view) {
    return std::unexpected(view.error());
  }
  const auto text = writeJson(ui::toValue(*view), JsonLayout::pretty);
  if (!text) {
    return failure(ExitStatus::notPossible, "the view is no JSON: " + text.error().reason);
  }
  return print(*text + '\n');
}

std::expected<Gallery, Failure> drawGallery(
    ExtensionClient& extension, EntryState state, int scale) {
  const auto catalogue = extension.ask<channel::Catalogue>(channel::CatalogueRequest{});
  if (!catalogue) {
    return std::unexpected(catalogue.error());
  }

  CardRenderer cards;
  Gallery gallery;
  for (const channel::CatalogueItem& item : catalogue->items) {
    const ui::WidgetFamily family = item.families.front();
    const auto view = viewOf(extension, {item.kind, state, {}, family});
    if (!view) {
      return std::unexpected(view.error());
    }
    GalleryPage::Widget& widget = gallery.page.widgets.emplace_back();
    widget = {item.kind, item.displayName, item.description, defaultSize(family), {}};
    const auto list = cards.compose(
        *view,
        {.kind = item.kind,
         .family = std::string(channel::familyName(family)),
         .size = widget.size,
         .scale = scale},
        currentLocale());
    widget.accessibilityLabel = accessibilityLabel(list);
    for (const auto& [appearance, name] :
         {std::pair{ui::Appearance::light, "light"}, {ui::Appearance::dark, "dark"}}) {
      auto bytes = draw(cards, list, PictureFormat::png, appearance);
      if (!bytes) {
        return std::unexpected(bytes.error());
      }
      gallery.cards.push_back(
          {.fileName = item.kind + "-" + name + ".png",
           .title = item.displayName + ", " + name,
           .size = widget.size,
           .bytes = std::move(*bytes)});
    }
  }
  return gallery;
}

Done gallery(ExtensionClient& extension, const GalleryChoice& choice) {
  const auto gallery = drawGallery(extension, choice.state, choice.scale);
  if (!gallery) {
    return std::unexpected(gallery.error());
  }
  std::error_code error;
  std::filesystem::create_directories(choice.folder, error);
  if (error) {
    return failure(
        ExitStatus::notPossible,
        "cannot make the folder " + choice.folder.string() + ": " + error.message());
  }
  for (const GalleryCard& card : gallery->cards) {
    if (auto written = writeOutput(choice.folder / card.fileName, card.bytes); !written) {
      return written;
    }
  }
  return writeOutput(choice.folder / "index.html", gallery->page.html());
}

}  // namespace quillpad::home
