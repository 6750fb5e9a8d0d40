// gallery: draws every widget of the catalogue in light and in dark appearance, and writes the
// pictures or compares them with those of a gallery that was recorded before.
#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "home/commands/Commands.h"
#include "home/commands/Files.h"
#include "home/commands/PictureDifference.h"
#include "home/commands/ViewChoice.h"
#include "home/page/CardRenderer.h"
#include "home/page/GalleryPage.h"
#include "home/page/WidgetSizes.h"
#include "platform/foundation/Locale.h"
#include "platform/foundation/WholeFile.h"

namespace quillpad::home {
namespace {

constexpr std::size_t maxPictureBytes = std::size_t{256} * 1024 * 1024;

struct Card {
  std::string fileName;
  std::string title;   // of the widget, with the appearance
  drawing::Size size;  // in points
  std::string png;
};

struct Drawn {
  std::vector<Card> cards;
  std::vector<GalleryWidget> widgets;
};

std::unexpected<Failure> unreadable(const std::filesystem::path& file, const std::string& reason) {
  return failure(ExitStatus::notPossible, file.string() + " cannot be read: " + reason);
}

std::expected<std::vector<std::filesystem::path>, std::error_code> filesIn(
    const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    files.push_back(entry->path());
  }
  if (error) {
    return std::unexpected(error);
  }
  std::ranges::sort(files);
  return files;
}

struct Gallery {
  std::string output{};
  std::string recorded{};
  EntryState state = EntryState::timeline;
  int scale = 2;
  drawing::Tolerance tolerance{};

  void declare(Options& options) {
    options.text(
        "-o,--output", output, "Where to; with --check, where to show what changed", "FOLDER");
    options.text("--check", recorded, "The gallery to compare with", "FOLDER");
    declareState(options, state);
    options.number("--scale", scale, "Device pixels per point", 1, 3);
    declareTolerance(options, tolerance);
  }

  Done run(const CommandContext& context) const {
    if (output.empty() && recorded.empty()) {
      return failure(ExitStatus::wrongUsage, "gallery needs -o FOLDER or --check FOLDER");
    }
    std::error_code error;
    if (!recorded.empty() && !std::filesystem::is_directory(recorded, error)) {
      return failure(
          ExitStatus::notPossible,
          "there is no gallery in " + recorded + "; \"quillpad-home gallery -o " + recorded +
              "\" records one");
    }
    const auto drawn = draw(context);
    if (!drawn) {
      return std::unexpected(drawn.error());
    }
    return recorded.empty() ? write(*drawn) : check(*drawn);
  }

 private:
  std::expected<Drawn, Failure> draw(const CommandContext& context) const {
    auto extension = ExtensionClient::start(context.extension);
    if (!extension) {
      return std::unexpected(extension.error());
    }
    const auto catalogue = extension->ask<channel::Catalogue>(channel::CatalogueRequest{});
    if (!catalogue) {
      return std::unexpected(catalogue.error());
    }
    CardRenderer cards;
    Drawn drawn;
    for (const channel::CatalogueItem& item : catalogue->items) {
      if (auto added = add(drawn, cards, *extension, item); !added) {
        return std::unexpected(added.error());
      }
    }
    return drawn;
  }

  Done add(
      Drawn& drawn,
      CardRenderer& cards,
      ExtensionClient& extension,
      const channel::CatalogueItem& item) const {
    const ui::WidgetFamily family = familyOf(item);
    const ViewChoice choice{.kind = item.kind, .state = state, .family = family};
    const auto view = viewOf(extension, choice);
    if (!view) {
      return std::unexpected(view.error());
    }
    GalleryWidget widget{item.kind, item.displayName, item.description, widgetSize(family), {}};
    const auto list = cards.compose(
        *view,
        {.kind = item.kind,
         .family = std::string(ui::familyName(family)),
         .size = widget.size,
         .scale = scale,
         .redaction = choice.redaction()},
        currentLocale());
    widget.accessibilityLabel = accessibilityLabel(list);
    for (const auto& [appearance, name] :
         {std::pair{ui::Appearance::light, "light"}, {ui::Appearance::dark, "dark"}}) {
      auto png = cards.write(list, PictureFormat::png, appearance);
      if (!png) {
        return failure(ExitStatus::wrongUsage, png.error());
      }
      drawn.cards.push_back(
          {.fileName = item.kind + "-" + name + ".png",
           .title = item.displayName + ", " + name,
           .size = widget.size,
           .png = std::move(*png)});
    }
    drawn.widgets.push_back(std::move(widget));
    return {};
  }

  Done makeOutputFolder() const {
    std::error_code error;
    std::filesystem::create_directories(output, error);
    if (error) {
      return failure(
          ExitStatus::notPossible, "cannot make the folder " + output + ": " + error.message());
    }
    return {};
  }

  Done write(const Drawn& drawn) const {
    Done written = makeOutputFolder();
    for (const Card& card : drawn.cards) {
      if (!written) {
        return written;
      }
      written = writeOutput(std::filesystem::path(output) / card.fileName, card.png);
    }
    if (!written) {
      return written;
    }
    return writeOutput(
        std::filesystem::path(output) / "index.html", galleryPage(drawn.widgets).html());
  }

  Done check(const Drawn& drawn) const {
    const auto changes = changesOf(drawn);
    if (!changes) {
      return std::unexpected(changes.error());
    }
    const std::string summary = changes->empty()
                                    ? "Nothing changed."
                                    : std::to_string(changes->size()) + " of " +
                                          std::to_string(drawn.cards.size()) + " pictures changed";
    const std::filesystem::path page = std::filesystem::path(output) / "index.html";
    if (!output.empty()) {
      Done written = makeOutputFolder();
      if (written) {
        written = writeOutput(page, changesPage(summary, *changes).html());
      }
      if (!written) {
        return written;
      }
    }
    if (changes->empty()) {
      return print(summary + "\n");
    }
    std::string lines;
    for (const PictureChange& change : *changes) {
      lines += change.fileName + ": " + change.change + "\n";
    }
    if (auto printed = print(lines); !printed) {
      return printed;
    }
    return failure(
        ExitStatus::notPossible,
        summary + (output.empty() ? "; -o FOLDER shows how" : "; " + page.string() + " shows how"));
  }

  std::expected<std::vector<PictureChange>, Failure> changesOf(const Drawn& drawn) const {
    std::vector<PictureChange> changes;
    for (const Card& card : drawn.cards) {
      auto change = changeOf(card);
      if (!change) {
        return std::unexpected(change.error());
      }
      if (std::optional<PictureChange>& found = *change) {
        changes.push_back(*std::move(found));
      }
    }
    const auto files = filesIn(recorded);
    if (!files) {
      return unreadable(recorded, files.error().message());
    }
    for (const std::filesystem::path& file : *files) {
      const std::string name = file.filename();
      if (file.extension() == ".png" &&
          std::ranges::find(drawn.cards, name, &Card::fileName) == drawn.cards.end()) {
        changes.push_back(removed(file));
      }
    }
    return changes;
  }

  // What became of the card since it was recorded; nothing where it looks the same.
  std::expected<std::optional<PictureChange>, Failure> changeOf(const Card& card) const {
    const auto file = std::filesystem::path(recorded) / card.fileName;
    PictureChange change{card.title, card.fileName, "it is new", card.size, {}, card.png, {}};
    auto before = readWholeFile(file, maxPictureBytes);
    if (!before) {
      if (before.error() == std::errc::no_such_file_or_directory) {
        return change;
      }
      return unreadable(file, before.error().message());
    }
    const auto expected = pictureIn(*before);
    const auto actual = pictureIn(card.png);
    if (!expected || !actual) {
      return unreadable(file, expected ? actual.error() : expected.error());
    }
    PictureDifference found = difference(*expected, *actual, tolerance);
    if (!found.looksDifferent) {
      return std::nullopt;
    }
    change.change = std::move(found.description);
    change.expected = std::move(*before);
    change.difference = std::move(found.png);
    return change;
  }

  static PictureChange removed(const std::filesystem::path& file) {
    const std::string name = file.filename();
    PictureChange change{name, name, "no widget has it any more", {}, {}, {}, {}};
    auto bytes = readWholeFile(file, maxPictureBytes);
    if (const auto picture = pictureIn(bytes.value_or(""))) {
      change.size = {picture->width / 2.0, picture->height / 2.0};
      change.expected = std::move(*bytes);
    }
    return change;
  }
};

}  // namespace

Command galleryCommand() {
  return command<Gallery>(
      "gallery",
      "Draw all widgets, light and dark, with an index page; or check a gallery drawn before",
      "gallery --check recorded -o changes");
}

}  // namespace quillpad::home
