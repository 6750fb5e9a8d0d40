// gallery: draws the widgets in light and in dark appearance, and writes the pictures or compares
// them with those of a gallery that was recorded before.
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "home/cards/PictureName.h"
#include "home/commands/Commands.h"
#include "home/commands/Files.h"
#include "home/commands/GalleryArchive.h"
#include "home/commands/GalleryCheck.h"
#include "home/commands/GalleryDrawing.h"
#include "home/commands/GalleryFolder.h"
#include "home/commands/GalleryPlan.h"
#include "home/commands/ViewChoice.h"
#include "home/page/GalleryPage.h"

namespace quillpad::home {
namespace {

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
  GallerySettings settings{};
  GalleryCheck check{};

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
        "--accept",
        check.accepts,
        check.accepted,
        "With --check: keep all changes, or one picture's",
        "NAME");
    declareTolerance(options, check.tolerance);
  }

  Done run(const CommandContext& context) {
    if (output.empty() && recorded.empty()) {
      return failure(ExitStatus::wrongUsage, "gallery needs -o FOLDER or --check FOLDER");
    }
    if (check.accepts && recorded.empty()) {
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
    auto plan = this->plan(context);
    if (!plan) {
      return std::unexpected(plan.error());
    }
    check.shownIn = output;
    return checkGallery(*std::move(plan), folder, check);
  }

 private:
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
    return done ? plan->outcome() : done;
  }

  Done record(const CommandContext& context) const {
    auto plan = this->plan(context);
    if (!plan) {
      return std::unexpected(plan.error());
    }
    const GalleryFolder folder(output);
    GalleryTally tally;
    Done done = folder.create();
    if (done) {
      done = drawGallery(
          *plan,
          folder,
          {},
          tally,
          [&](const auto&, const std::string& name, const auto& picture, const auto& comparison) {
            if (comparison.status != GalleryFolder::Status::unchanged) {
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
          std::to_string(tally.count(GalleryFolder::Status::isNew)) + " new, " +
          std::to_string(tally.count(GalleryFolder::Status::changed)) + " changed, " +
          std::to_string(tally.count(GalleryFolder::Status::unchanged)) + " unchanged in " +
          output + "\n");
    }
    return done ? plan->outcome() : done;
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
