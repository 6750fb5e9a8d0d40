#include "home/commands/GalleryFolder.h"

#include <algorithm>
#include <system_error>

#include "platform/foundation/Json.h"
#include "platform/os/FolderListing.h"
#include "platform/os/WholeFile.h"

namespace quillpad::home {
namespace {

constexpr std::size_t maxPictureBytes = std::size_t{256} * 1024 * 1024;
constexpr std::size_t maxSettingsBytes = std::size_t{64} * 1024;
constexpr const char* settingsFile = "gallery.json";

std::unexpected<Failure> unreadable(const std::filesystem::path& file, const std::string& reason) {
  return failure(ExitStatus::notPossible, file.string() + " cannot be read: " + reason);
}

}  // namespace

Done GalleryFolder::create() const {
  std::error_code error;
  std::filesystem::create_directories(folder_, error);
  if (error) {
    return failure(
        ExitStatus::notPossible,
        "cannot make the folder " + folder_.string() + ": " + error.message());
  }
  return {};
}

std::expected<std::string, Failure> GalleryFolder::read(const std::string& name) const {
  auto bytes = readWholeFile(folder_ / name, maxPictureBytes);
  if (!bytes) {
    return unreadable(folder_ / name, bytes.error().message());
  }
  return *std::move(bytes);
}

std::expected<GalleryFolder::Comparison, Failure> GalleryFolder::compare(
    const std::string& name, std::string_view png, const drawing::Tolerance& tolerance) const {
  auto before = readWholeFile(folder_ / name, maxPictureBytes);
  if (!before && before.error() == std::errc::no_such_file_or_directory) {
    return Comparison{.status = Status::isNew};
  }
  if (!before) {
    return unreadable(folder_ / name, before.error().message());
  }
  if (*before == png) {
    return Comparison{};
  }
  const auto expected = pictureIn(*before);
  const auto actual = pictureIn(png);
  if (!expected || !actual) {
    return unreadable(folder_ / name, expected ? actual.error() : expected.error());
  }
  PictureDifference found = difference(*expected, *actual, tolerance);
  if (!found.looksDifferent) {
    return Comparison{};
  }
  return Comparison{
      .status = Status::changed, .before = *std::move(before), .difference = std::move(found)};
}

Done GalleryFolder::write(const std::string& name, std::string_view bytes) const {
  const auto error = writeWholeFile(
      folder_ / name, bytes, {.access = FileAccess::asBefore, .durability = Durability::unsynced});
  if (error) {
    return failure(
        ExitStatus::notPossible,
        "cannot write " + (folder_ / name).string() + ": " + error.message());
  }
  return {};
}

Done GalleryFolder::remove(const std::string& name) const {
  std::error_code error;
  std::filesystem::remove(folder_ / name, error);
  if (error) {
    return failure(
        ExitStatus::notPossible,
        "cannot remove " + (folder_ / name).string() + ": " + error.message());
  }
  return {};
}

std::expected<std::vector<std::string>, Failure> GalleryFolder::pictures() const {
  auto names = stemsIn(folder_, ".png");
  if (!names) {
    return unreadable(folder_, names.error().message());
  }
  for (std::string& name : *names) {
    name += ".png";
  }
  std::ranges::sort(*names);
  return *std::move(names);
}

std::expected<std::optional<GallerySettings>, Failure> GalleryFolder::settings() const {
  const std::filesystem::path file = folder_ / settingsFile;
  const auto text = readWholeFile(file, maxSettingsBytes);
  if (!text && text.error() == std::errc::no_such_file_or_directory) {
    return std::nullopt;
  }
  if (!text) {
    return unreadable(file, text.error().message());
  }
  const auto document = readJson(*text, JsonFragments::refused);
  if (!document) {
    return unreadable(file, document.error().reason);
  }
  auto settings = GallerySettings::fromValue(*document);
  if (!settings) {
    return unreadable(file, settings.error());
  }
  return *std::move(settings);
}

Done GalleryFolder::writeSettings(const GallerySettings& settings) const {
  return write(
      settingsFile, writeJson(settings.toValue(), JsonLayout::pretty).value_or("{}") + "\n");
}

}  // namespace quillpad::home
