// gallery: draws the widgets in light and in dark appearance, and writes the pictures or compares
// them with those of a gallery that was recorded before.
#include <algorithm>
#include <array>
#include <filesystem>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "home/cards/CardBatch.h"
#include "home/cards/PictureName.h"
#include "home/commands/Commands.h"
#include "home/commands/Files.h"
#include "home/commands/GalleryArchive.h"
#include "home/commands/GalleryFolder.h"
#include "home/commands/GalleryPlan.h"
#include "home/commands/Progress.h"
#include "home/commands/ViewChoice.h"
#include "home/page/GalleryPage.h"

namespace quillpad::home {
namespace {

using Status = GalleryFolder::Status;

std::string fileName(const std::string& stem, ui::Appearance appearance) {
  return stem + "-" + std::string(ui::appearanceName(appearance)) + ".png";
}

// What became of the pictures of a run. Filled from several threads.
class Tally {
 public:
  void add(Status status) {
    const std::scoped_lock lock(mutex_);
    ++counts_.at(static_cast<std::size_t>(status));
  }

  void add(PictureChange change) {
    const std::scoped_lock lock(mutex_);
    changes_.push_back(std::move(change));
  }

  void fail(Failure failure) {
    const std::scoped_lock lock(mutex_);
    failure_ = failure_ ? failure_ : std::optional(std::move(failure));
  }

  std::size_t count(Status status) const { return counts_.at(static_cast<std::size_t>(status)); }
  // The first failure, if there was one.
  Done outcome() const { return failure_ ? Done(std::unexpected(*failure_)) : Done(); }

  // In the order of their names.
  std::vector<PictureChange> takeChanges() {
    std::ranges::sort(changes_, {}, &PictureChange::fileName);
    return std::move(changes_);
  }

 private:
  std::mutex mutex_;
  std::array<std::size_t, 3> counts_{};
  std::vector<PictureChange> changes_;
  std::optional<Failure> failure_;
};

Done outcomeOf(const GalleryPlan& plan) {
  if (!plan.failure) {
    return {};
  }
  return failure(
      plan.failure->status,
      std::to_string(plan.missing.size()) + " of " +
          std::to_string(plan.missing.size() + plan.cards.size()) +
          " cards could not be drawn, first " + plan.missing.front() + ": " +
          plan.failure->message);
}

// Whether what was given of the settings is what a gallery was recorded with; samples may lie
// elsewhere.
bool agrees(const GallerySettings& given, const GallerySettings& recorded) {
  const auto fits = [&](auto GallerySettings::* member) {
    return given.*member == GallerySettings{}.*member || given.*member == recorded.*member;
  };
  return fits(&GallerySettings::entries) && fits(&GallerySettings::all) &&
         fits(&GallerySettings::scale) && fits(&GallerySettings::locale) &&
         fits(&GallerySettings::currency);
}

struct Gallery {
  std::string output{};
  std::string recorded{};
  bool accepts = false;
  std::string accepted{};  // empty: all
  GallerySettings settings{};
  drawing::Tolerance tolerance{};

  void declare(Options& options) {
    options.text(
        "-o,--output",
        output,
        "Where to, or one archive NAME.zip; with --check, where to show what changed",
        "FOLDER");
    options.choice(
        "--state", settings.entries, "The entries to draw, usually the timeline's", gallerySources);
    options.flag("--all", settings.all, "All states, on every screen and in every language");
    declareSamples(options, settings.samples);
    declareRegion(options, settings.locale, settings.currency);
    options.number("--scale", settings.scale, "Device pixels per point", 1, 3);
    options.text("--check", recorded, "The gallery to compare with, drawn as it was", "FOLDER");
    options.flagOrText(
        "--accept", accepts, accepted, "With --check: keep all changes, or one picture's", "NAME");
    declareTolerance(options, tolerance);
  }

  Done run(const CommandContext& context) {
    if (output.empty() && recorded.empty()) {
      return failure(ExitStatus::wrongUsage, "gallery needs -o FOLDER or --check FOLDER");
    }
    if (accepts && recorded.empty()) {
      return failure(ExitStatus::wrongUsage, "--accept needs --check FOLDER");
    }
    const bool isArchive = output.ends_with(".zip");
    if (recorded.empty()) {
      return isArchive ? archive(context) : record(context);
    }
    if (isArchive) {
      return failure(
          ExitStatus::wrongUsage, "--check shows what changed in a folder, not in a .zip");
    }
    std::error_code error;
    if (!std::filesystem::is_directory(recorded, error)) {
      return failure(
          ExitStatus::notPossible,
          "there is no gallery in " + recorded + "; \"quillpad-home gallery --state samples -o " +
              recorded + "\" records one");
    }
    if (!output.empty() && std::filesystem::equivalent(output, recorded, error)) {
      return failure(
          ExitStatus::wrongUsage,
          "-o is the recorded gallery itself; name another folder for what changed, or use "
          "--accept");
    }
    const GalleryFolder folder(recorded);
    const auto before = folder.settings();
    if (!before) {
      return std::unexpected(before.error());
    }
    if (const std::optional<GallerySettings>& kept = *before) {
      if (!agrees(settings, *kept)) {
        return failure(
            ExitStatus::wrongUsage,
            "--check draws the gallery as it was recorded: leave out the options that differ, or "
            "record it anew with -o");
      }
      const std::string samples = settings.samples;
      settings = *kept;
      settings.samples = samples;
    }
    return check(context, folder);
  }

 private:
  // Draws the plan; each picture is compared with the one in the folder and handed on.
  template <class Take>
  static Done draw(
      GalleryPlan& plan,
      const GalleryFolder& folder,
      const drawing::Tolerance& tolerance,
      Tally& tally,
      const Take& take) {
    std::vector<BatchCard> cards;
    cards.reserve(plan.cards.size());
    for (const GalleryPlan::Card& card : plan.cards) {
      cards.push_back(card.drawing);
    }
    std::vector<std::string> labels(cards.size());
    Progress progress(cards.size() * bothAppearances.size());
    drawAll(cards, bothAppearances, drawingThreads(), [&](const BatchPicture& picture) {
      progress.advance();
      if (!picture.png) {
        return tally.fail({ExitStatus::wrongUsage, picture.png.error()});
      }
      const GalleryPlan::Card& card = plan.cards[picture.card];
      const std::string name = fileName(card.stem, picture.appearance);
      auto comparison = folder.compare(name, *picture.png, tolerance);
      if (!comparison) {
        return tally.fail(std::move(comparison.error()));
      }
      tally.add(comparison->status);
      if (picture.appearance == ui::Appearance::light) {
        labels[picture.card] = picture.accessibilityLabel;
      }
      take(card, name, picture, *std::move(comparison));
    });
    for (std::size_t i = 0; i < cards.size(); ++i) {
      const GalleryPlan::Card& card = plan.cards[i];
      plan.widgets[card.widget].pictures.push_back(
          {.stem = card.stem,
           .title = card.title,
           .size = card.drawing.request.size,
           .accessibilityLabel = std::move(labels[i])});
    }
    return tally.outcome();
  }

  std::expected<GalleryPlan, Failure> plan(const CommandContext& context) const {
    ExtensionBatch extension(context.extension);
    return planGallery(extension, settings);
  }

  Done archive(const CommandContext& context) const {
    const auto plan = this->plan(context);
    if (!plan) {
      return std::unexpected(plan.error());
    }
    Done done = writeGalleryArchive(*plan, output);
    if (done) {
      done = print(
          std::to_string(plan->cards.size() * bothAppearances.size()) + " pictures in " + output +
          "\n");
    }
    return done ? outcomeOf(*plan) : done;
  }

  Done record(const CommandContext& context) const {
    auto plan = this->plan(context);
    if (!plan) {
      return std::unexpected(plan.error());
    }
    const GalleryFolder folder(output);
    Tally tally;
    Done done = folder.create();
    if (done) {
      done = draw(
          *plan,
          folder,
          {},
          tally,
          [&](const auto&, const std::string& name, const auto& picture, const auto& comparison) {
            if (comparison.status != Status::unchanged) {
              if (Done written = folder.write(name, *picture.png); !written) {
                tally.fail(std::move(written.error()));
              }
            }
          });
    }
    if (done) {
      done = tally.outcome();
    }
    if (done) {
      done = folder.write("index.html", galleryPage(plan->widgets).html());
    }
    if (done) {
      done = folder.writeSettings(settings);
    }
    if (done) {
      done = print(
          std::to_string(tally.count(Status::isNew)) + " new, " +
          std::to_string(tally.count(Status::changed)) + " changed, " +
          std::to_string(tally.count(Status::unchanged)) + " unchanged in " + output + "\n");
    }
    return done ? outcomeOf(*plan) : done;
  }

  Done check(const CommandContext& context, const GalleryFolder& folder) const {
    auto plan = this->plan(context);
    if (!plan) {
      return std::unexpected(plan.error());
    }
    Tally tally;
    const Done drawn = draw(
        *plan,
        folder,
        tolerance,
        tally,
        [&](const auto& card, const std::string& name, const auto& picture, auto comparison) {
          if (comparison.status != Status::unchanged) {
            tally.add(
                {.title = card.title + ", " + std::string(ui::appearanceName(picture.appearance)),
                 .fileName = name,
                 .change = comparison.status == Status::isNew ? "it is new"
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
    const auto gone = findGone(*plan, folder, tally);
    if (!gone) {
      return std::unexpected(gone.error());
    }
    Done done = report(tally, *gone, folder);
    if (done && accepts) {
      const auto kept = widgetsIn(folder, plan->widgets);
      done = kept ? folder.write("index.html", galleryPage(*kept).html())
                  : Done(std::unexpected(kept.error()));
    }
    return done ? outcomeOf(*plan) : done;
  }

  // The widgets with those pictures that the folder has in both appearances.
  static std::expected<std::vector<GalleryWidget>, Failure> widgetsIn(
      const GalleryFolder& folder, std::vector<GalleryWidget> widgets) {
    const auto names = folder.pictures();
    if (!names) {
      return std::unexpected(names.error());
    }
    for (GalleryWidget& widget : widgets) {
      std::erase_if(widget.pictures, [&](const GalleryWidget::Picture& picture) {
        return !std::ranges::all_of(bothAppearances, [&](ui::Appearance appearance) {
          return std::ranges::binary_search(*names, fileName(picture.stem, appearance));
        });
      });
    }
    return widgets;
  }

  // Adds the recorded pictures that nothing was drawn for; their number.
  static std::expected<std::size_t, Failure> findGone(
      const GalleryPlan& plan, const GalleryFolder& folder, Tally& tally) {
    std::vector<std::string> known;
    for (const ui::Appearance appearance : bothAppearances) {
      for (const GalleryPlan::Card& card : plan.cards) {
        known.push_back(fileName(card.stem, appearance));
      }
      for (const std::string& stem : plan.missing) {
        known.push_back(fileName(stem, appearance));
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

  Done report(Tally& tally, std::size_t gone, const GalleryFolder& folder) const {
    const std::string counts = std::to_string(tally.count(Status::changed)) + " changed, " +
                               std::to_string(tally.count(Status::isNew)) + " new, " +
                               std::to_string(gone) + " gone, " +
                               std::to_string(tally.count(Status::unchanged)) + " unchanged";
    const std::vector<PictureChange> changes = tally.takeChanges();
    if (!output.empty()) {
      const GalleryFolder shown(output);
      Done written = shown.create();
      if (written) {
        written = shown.write("index.html", changesPage(counts, changes).html());
      }
      if (!written) {
        return written;
      }
    }
    if (accepts) {
      return accept(changes, folder);
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
            (output.empty()
                 ? "; -o FOLDER shows how"
                 : "; " + (std::filesystem::path(output) / "index.html").string() + " shows how") +
            ", --accept keeps it");
  }

  Done accept(const std::vector<PictureChange>& changes, const GalleryFolder& folder) const {
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
};

}  // namespace

Command galleryCommand() {
  return command<Gallery>(
      "gallery",
      "Draw all widgets, light and dark, with an index page or as one archive; or check a gallery "
      "drawn before",
      "gallery --check recorded -o changes");
}

}  // namespace quillpad::home
