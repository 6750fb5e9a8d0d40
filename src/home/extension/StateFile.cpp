#include "home/extension/StateFile.h"

#include <system_error>
#include <utility>

#include "platform/foundation/Decoder.h"
#include "platform/foundation/Iso8601.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/UserFolders.h"
#include "platform/foundation/WholeFile.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad::home {
namespace {

constexpr int formatVersion = 1;
constexpr std::size_t maxFileBytes = std::size_t{64} * 1024 * 1024;

Value encodePicture(const Picture& picture) {
  Dictionary encoded{
      {"received", iso8601(picture.received)},
      {"entry", channel::toValue(picture.entry)},
      {"view", ui::toValue(picture.view)}};
  if (picture.failure) {
    encoded.set(
        "failure",
        Dictionary{
            {"code", picture.failure->code},
            {"description", picture.failure->localizedDescription}});
  }
  return encoded;
}

Picture decodePicture(const Decoder& d) {
  Picture picture{
      .source = Picture::Source::timeline,
      .entry = channel::entryFrom(d["entry"]),
      .view = ui::viewFrom(d["view"]),
      .received = d["received"].date()};
  if (const auto failure = d.find("failure")) {
    picture.failure = {(*failure)["code"].whole<int>(), (*failure)["description"].text()};
  }
  return picture;
}

}  // namespace

std::optional<std::filesystem::path> stateFile() {
  const auto folder = userStateFolder();
  return folder ? std::optional(*folder / "home.json") : std::nullopt;
}

std::expected<std::optional<SavedHome>, std::string> readState(const std::filesystem::path& file) {
  const auto text = readWholeFile(file, maxFileBytes);
  if (!text) {
    if (text.error() == std::errc::no_such_file_or_directory) {
      return std::optional<SavedHome>{};
    }
    return std::unexpected(file.string() + " cannot be read: " + text.error().message());
  }
  auto state = decodeState(*text);
  if (!state) {
    return std::unexpected(file.string() + " is not a home screen's state: " + state.error());
  }
  return std::optional(std::move(*state));
}

std::expected<void, std::string> writeState(
    const std::filesystem::path& file, const SavedHome& state) {
  const auto text = encodeState(state);
  if (!text) {
    return std::unexpected("the home screen's state cannot be written: " + text.error());
  }
  std::error_code error;
  std::filesystem::create_directories(file.parent_path(), error);
  if (!error) {
    error = writeWholeFile(file, *text);
  }
  if (error) {
    return std::unexpected(file.string() + " cannot be written: " + error.message());
  }
  return {};
}

std::expected<std::string, std::string> encodeState(const SavedHome& state) {
  Array placed;
  for (const std::string& kind : state.placed) {
    placed.emplace_back(kind);
  }
  Dictionary pictures;
  for (const auto& [kind, picture] : state.pictures) {
    pictures.set(kind, encodePicture(picture));
  }
  const Dictionary document{
      {"version", formatVersion},
      {"catalogue", channel::toValue(channel::Catalogue{state.catalogue})},
      {"placed", std::move(placed)},
      {"pictures", std::move(pictures)}};
  auto text = writeJson(document, JsonLayout::compact);
  if (!text) {
    return std::unexpected(text.error().reason);
  }
  return std::move(*text);
}

std::expected<SavedHome, std::string> decodeState(std::string_view text) {
  const auto document = readJson(text, JsonFragments::refused);
  if (!document) {
    return std::unexpected(document.error().reason);
  }
  const Decoder d(*document);
  if (d["version"].whole<int>() != formatVersion || !d.error().empty()) {
    return std::unexpected("it is of another version");
  }
  SavedHome state{.catalogue = channel::catalogueFrom(d["catalogue"]).items};
  for (const Decoder& kind : d["placed"].elements()) {
    state.placed.push_back(kind.text());
  }
  for (const auto& [kind, picture] : d["pictures"].members()) {
    state.pictures.emplace(kind, decodePicture(picture));
  }
  return d.result(std::move(state));
}

}  // namespace quillpad::home
