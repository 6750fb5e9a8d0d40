#include "home/commands/GalleryCheck.h"

#include <algorithm>
#include <filesystem>
#include <utility>
#include <vector>

#include "home/cards/PictureName.h"
#include "home/commands/Files.h"
#include "home/commands/GalleryDrawing.h"
#include "home/page/GalleryPage.h"

namespace quillpad::home {
namespace {

// The widgets with those pictures that the folder has in both appearances.
std::expected<std::vector<GalleryWidget>, Failure> widgetsIn(
    const GalleryFolder& folder, std::vector<GalleryWidget> widgets) {
  const auto names = folder.pictures();
  if (!names) {
    return std::unexpected(names.error());
  }
  for (GalleryWidget& widget : widgets) {
    std::erase_if(widget.pictures, [&](const GalleryWidget::Picture& picture) {
      return !std::ranges::all_of(bothAppearances, [&](ui::Appearance appearance) {
        return std::ranges::binary_search(*names, pictureFile(picture.stem, appearance));
      });
    });
  }
  return widgets;
}

// Adds the recorded pictures that nothing was drawn for; their number.
std::expected<std::size_t, Failure> findGone(
    const GalleryPlan& plan, const GalleryFolder& folder, GalleryTally& tally) {
  std::vector<std::string> known;
  for (const ui::Appearance appearance : bothAppearances) {
    for (const GalleryPlan::Card& card : plan.cards) {
      known.push_back(pictureFile(card.stem, appearance));
    }
    for (const std::string& stem : plan.missing) {
      known.push_back(pictureFile(stem, appearance));
    }
  }
  std::ranges::sort(known);
  const auto names = folder.pictures();
  if (!names) {
    return std::unexpected(names.error());
  }
  std::size_t count = 0;
  for (const std::string& name : *names) {
    if (std::ranges::binary_search(known, name)) {
      continue;
    }
    ++count;
    PictureChange change{.title = name, .fileName = name, .change = "no widget has it any more"};
    auto bytes = folder.read(name);
    if (const auto picture = pictureIn(bytes.value_or(""))) {
      change.size = {picture->width / 2.0, picture->height / 2.0};
      change.expected = *std::move(bytes);
    }
    tally.add(std::move(change));
  }
  return count;
}

// Takes the changes, or that of the one name, over into the folder.
Done accept(
    const std::vector<PictureChange>& changes,
    const GalleryFolder& folder,
    const std::string& accepted) {
  std::string lines;
  for (const PictureChange& change : changes) {
    const std::string name = std::filesystem::path(change.fileName).stem();
    if (!accepted.empty() && accepted != name && accepted != change.fileName) {
      continue;
    }
    const Done kept = change.actual.empty() ? folder.remove(change.fileName)
                                            : folder.write(change.fileName, change.actual);
    if (!kept) {
      return kept;
    }
    lines += change.fileName + (change.actual.empty() ? " removed\n" : " kept\n");
  }
  if (lines.empty() && !accepted.empty()) {
    return failure(
        ExitStatus::wrongUsage,
        "no picture \"" + accepted + "\" changed; without --accept, gallery --check lists them");
  }
  return print(lines.empty() ? "Nothing changed.\n" : lines);
}

Done report(
    GalleryTally& tally, std::size_t gone, const GalleryFolder& folder, const GalleryCheck& check) {
  const std::string counts =
      std::to_string(tally.count(GalleryFolder::Status::changed)) + " changed, " +
      std::to_string(tally.count(GalleryFolder::Status::isNew)) + " new, " + std::to_string(gone) +
      " gone, " + std::to_string(tally.count(GalleryFolder::Status::unchanged)) + " unchanged";
  const std::vector<PictureChange> changes = tally.takeChanges();
  if (!check.shownIn.empty()) {
    const GalleryFolder shown(check.shownIn);
    Done written = shown.create();
    if (written) {
      written = shown.write("index.html", changesPage(counts, changes).html());
    }
    if (!written) {
      return written;
    }
  }
  if (check.accepts) {
    return accept(changes, folder, check.accepted);
  }
  if (changes.empty()) {
    return print("Nothing changed: " + counts + ".\n");
  }
  std::string lines;
  for (const PictureChange& change : changes) {
    lines += change.fileName + ": " + change.change + "\n";
  }
  if (auto printed = print(lines); !printed) {
    return printed;
  }
  return failure(
      ExitStatus::different,
      counts +
          (check.shownIn.empty()
               ? "; -o FOLDER shows how"
               : "; " + (std::filesystem::path(check.shownIn) / "index.html").string() +
                     " shows how") +
          ", --accept keeps it");
}

}  // namespace

Done checkGallery(GalleryPlan plan, const GalleryFolder& folder, const GalleryCheck& check) {
  GalleryTally tally;
  const Done drawn = drawGallery(
      plan,
      folder,
      check.tolerance,
      tally,
      [&](const auto& card, const std::string& name, const auto& picture, auto comparison) {
        if (comparison.status != GalleryFolder::Status::unchanged) {
          tally.add(
              {.title = card.title + ", " + std::string(ui::appearanceName(picture.appearance)),
               .fileName = name,
               .change = comparison.status == GalleryFolder::Status::isNew
                             ? "it is new"
                             : comparison.difference.description,
               .size = card.drawing.request.size,
               .expected = std::move(comparison.before),
               .actual = *picture.png,
               .difference = std::move(comparison.difference.png)});
        }
      });
  if (!drawn) {
    return drawn;
  }
  const auto gone = findGone(plan, folder, tally);
  if (!gone) {
    return std::unexpected(gone.error());
  }
  Done done = report(tally, *gone, folder, check);
  if (done && check.accepts) {
    const auto kept = widgetsIn(folder, plan.widgets);
    done = kept ? folder.write("index.html", galleryPage(*kept).html())
                : Done(std::unexpected(kept.error()));
  }
  return done ? plan.outcome() : done;
}

}  // namespace quillpad::home
