#include "home/commands/CompareCommands.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "home/commands/Files.h"
#include "home/commands/PictureCommands.h"
#include "home/page/Markup.h"
#include "platform/foundation/Base64.h"
#include "platform/foundation/WholeFile.h"
#include "platform/paint/PngReader.h"
#include "platform/paint/PngWriter.h"

namespace quillpad::home {
namespace {

using drawing::Bitmap;
using drawing::Comparison;
using drawing::Likeness;

constexpr std::size_t largestFile = std::size_t{256} * 1024 * 1024;

std::string sizeText(const Bitmap& picture) {
  return std::to_string(picture.width) + " by " + std::to_string(picture.height);
}

std::string differenceText(
    const Bitmap& expected, const Bitmap& actual, const Comparison& comparison) {
  if (comparison.likeness == Likeness::identical) {
    return "identical";
  }
  if (comparison.difference.pixels.empty()) {
    return "it is " + sizeText(actual) + " pixels large instead of " + sizeText(expected);
  }
  return std::to_string(comparison.differingPixels) + " of " +
         std::to_string(expected.pixels.size()) + " pixels differ, a component by up to " +
         std::to_string(comparison.largestDifference);
}

std::string pngOf(const Bitmap& picture) {
  const std::vector<std::uint8_t> bytes = drawing::writePng(picture);
  return {bytes.begin(), bytes.end()};
}

std::expected<Bitmap, std::string> pictureIn(std::string_view bytes) {
  return drawing::readPng({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

// What became of a picture of the gallery. Bytes of PNG files, empty where there is none.
struct Change {
  std::string title;
  std::string fileName;
  std::string what;
  drawing::Size size;
  std::string expected;
  std::string actual;
  std::string difference;
};

constexpr std::string_view reportHtml = R"(<!doctype html>
<html lang="en">
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Changes of the gallery</title>
<style>
  :root { color-scheme: light dark; font: 15px/1.4 Inter, system-ui, sans-serif; background: light-dark(#e8ecf3, #161b24); }
  body { max-width: 1160px; margin: 0 auto; padding: 20px 24px 60px; }
  h1 { font-size: 26px; font-weight: 600; }
  h2 { font-size: 17px; font-weight: 600; margin: 36px 0 0; }
  p { margin: 2px 0 14px; opacity: .75; }
  div { display: flex; flex-wrap: wrap; gap: 24px; }
  figure { margin: 0; }
  img { display: block; background: repeating-conic-gradient(#8883 0 25%, transparent 0 50%) 0 0 / 16px 16px; }
  figcaption { font-size: 13px; margin-top: 6px; }
</style>
<h1>{{count}}</h1>
{{changes}}</html>
)";

constexpr std::string_view changeHtml = R"(<h2>{{title}}</h2>
<p>{{file}}: {{what}}</p>
<div>{{pictures}}</div>
)";

constexpr std::string_view pictureHtml =
    R"(<figure><img src="data:image/png;base64,{{bytes}}" width="{{width}}" height="{{height}}" alt="{{caption}}"><figcaption>{{caption}}</figcaption></figure>)";

std::string reportOf(const std::vector<Change>& changes, const std::string& count) {
  Markup list;
  for (const Change& change : changes) {
    Markup pictures;
    const auto add = [&](const std::string& bytes, std::string_view caption) {
      if (!bytes.empty()) {
        pictures.html += filled(
                             pictureHtml,
                             {{"bytes", {base64(bytes)}},
                              {"width", {std::to_string(std::lround(change.size.width))}},
                              {"height", {std::to_string(std::lround(change.size.height))}},
                              {"caption", escaped(caption)}})
                             .html;
      }
    };
    add(change.expected, "expected");
    add(change.actual, "actual");
    add(change.difference, "difference");
    list.html += filled(
                     changeHtml,
                     {{"title", escaped(change.title)},
                      {"file", escaped(change.fileName)},
                      {"what", escaped(change.what)},
                      {"pictures", pictures}})
                     .html;
  }
  return filled(reportHtml, {{"count", escaped(count)}, {"changes", list}}).html;
}

// What became of the card since it was recorded; nothing where it looks the same.
std::expected<std::optional<Change>, Failure> changeOf(
    const GalleryCard& card, const CheckChoice& choice) {
  const auto file = choice.recorded / card.fileName;
  const auto recorded = readWholeFile(file, largestFile);
  Change change{
      .title = card.title,
      .fileName = card.fileName,
      .what = "it is new",
      .size = card.size,
      .expected = "",
      .actual = card.bytes,
      .difference = ""};
  if (!recorded) {
    if (recorded.error() == std::errc::no_such_file_or_directory) {
      return change;
    }
    return failure(
        ExitStatus::notPossible, file.string() + " cannot be read: " + recorded.error().message());
  }
  const auto expected = pictureIn(*recorded);
  const auto actual = pictureIn(card.bytes);
  if (!expected || !actual) {
    return failure(
        ExitStatus::notPossible,
        file.string() + " cannot be read: " + (expected ? actual.error() : expected.error()));
  }
  const Comparison comparison = drawing::compare(*expected, *actual, choice.tolerance);
  if (comparison.likeness != Likeness::different) {
    return std::nullopt;
  }
  change.what = differenceText(*expected, *actual, comparison);
  change.expected = *recorded;
  if (!comparison.difference.pixels.empty()) {
    change.difference = pngOf(comparison.difference);
  }
  return change;
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

// The recorded pictures that no widget has any more.
std::expected<std::vector<Change>, Failure> goneCards(
    const Gallery& gallery, const CheckChoice& choice) {
  const auto files = filesIn(choice.recorded);
  if (!files) {
    return failure(
        ExitStatus::notPossible,
        choice.recorded.string() + " cannot be read: " + files.error().message());
  }
  std::vector<Change> gone;
  for (const std::filesystem::path& file : *files) {
    const std::string name = file.filename();
    if (file.extension() != ".png" ||
        std::ranges::find(gallery.cards, name, &GalleryCard::fileName) != gallery.cards.end()) {
      continue;
    }
    const auto bytes = readWholeFile(file, largestFile);
    const auto picture = pictureIn(bytes.value_or(""));
    gone.push_back(
        {.title = name,
         .fileName = name,
         .what = "no widget has it any more",
         .size =
             picture ? drawing::Size{picture->width / 2.0, picture->height / 2.0} : drawing::Size{},
         .expected = picture ? *bytes : "",
         .actual = "",
         .difference = ""});
  }
  return gone;
}

}  // namespace

Done compare(const CompareChoice& choice) {
  const auto expected = drawing::readPngFile(choice.expected);
  if (!expected) {
    return failure(ExitStatus::notPossible, expected.error());
  }
  const auto actual = drawing::readPngFile(choice.actual);
  if (!actual) {
    return failure(ExitStatus::notPossible, actual.error());
  }

  const Comparison comparison = drawing::compare(*expected, *actual, choice.tolerance);
  const std::string words = differenceText(*expected, *actual, comparison);
  if (!choice.output.empty() && !comparison.difference.pixels.empty()) {
    if (auto written = writeOutput(choice.output, pngOf(comparison.difference)); !written) {
      return written;
    }
  }
  if (comparison.likeness == Likeness::different) {
    return failure(
        ExitStatus::notPossible,
        choice.actual.string() + " differs from " + choice.expected.string() + ": " + words);
  }
  return print(words + "\n");
}

Done checkGallery(ExtensionClient& extension, const CheckChoice& choice) {
  std::error_code error;
  if (!std::filesystem::is_directory(choice.recorded, error)) {
    return failure(
        ExitStatus::notPossible,
        "there is no gallery in " + choice.recorded.string() + "; \"quillpad-home gallery -o " +
            choice.recorded.string() + "\" records one");
  }
  const auto gallery = drawGallery(extension, choice.state, choice.scale);
  if (!gallery) {
    return std::unexpected(gallery.error());
  }

  std::vector<Change> changes;
  for (const GalleryCard& card : gallery->cards) {
    auto found = changeOf(card, choice);
    if (!found) {
      return std::unexpected(found.error());
    }
    if (std::optional<Change>& change = *found) {
      changes.push_back(std::move(*change));
    }
  }
  auto gone = goneCards(*gallery, choice);
  if (!gone) {
    return std::unexpected(gone.error());
  }
  std::ranges::move(*gone, std::back_inserter(changes));

  const std::string count = changes.empty()
                                ? "Nothing changed."
                                : std::to_string(changes.size()) + " of " +
                                      std::to_string(gallery->cards.size()) + " pictures changed";
  if (!choice.output.empty()) {
    std::filesystem::create_directories(choice.output, error);
    if (auto written = writeOutput(choice.output / "index.html", reportOf(changes, count));
        !written) {
      return written;
    }
  }
  std::string lines;
  for (const Change& change : changes) {
    lines += change.fileName + ": " + change.what + "\n";
  }
  if (changes.empty()) {
    return print(count + "\n");
  }
  if (auto printed = print(lines); !printed) {
    return printed;
  }
  return failure(
      ExitStatus::notPossible,
      count + (choice.output.empty()
                   ? "; -o FOLDER shows how"
                   : "; " + (choice.output / "index.html").string() + " shows how"));
}

}  // namespace quillpad::home
