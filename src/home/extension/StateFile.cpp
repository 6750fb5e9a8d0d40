#include "home/extension/StateFile.h"

#include <system_error>
#include <utility>

#include "platform/foundation/Decoder.h"
#include "platform/foundation/Iso8601.h"
#include "platform/foundation/Json.h"
#include "platform/os/UserFolders.h"
#include "platform/os/WholeFile.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad::home {
namespace {

constexpr int formatVersion = 1;
constexpr std::size_t maxFileBytes = std::size_t{64} * 1024 * 1024;

Value encodePicture(const RenderedEntry& picture) {
  Dictionary encoded{
      {"received", iso8601(picture.received)},
      {"entry", channel::toValue(picture.entry)},
      {"view", ui::toValue(picture.view)}};
  if (picture.failure) {
    encoded.set(
        "failure",
        Dictionary{
            {"code", picture.failure->code},
            {"description", picture.failure->localizedDescription},
            {"since", iso8601(picture.failingSince)}});
  }
  return encoded;
}

RenderedEntry decodePicture(const Decoder& d) {
  RenderedEntry picture{
      .source = EntrySource::timeline,
      .entry = channel::entryFrom(d["entry"]),
      .view = ui::viewFrom(d["view"]),
      .received = d["received"].date()};
  if (const auto failure = d.find("failure")) {
    picture.failure = {(*failure)["code"].whole<int>(), (*failure)["description"].text()};
    const auto since = failure->find("since");
    picture.failingSince = since ? since->date() : picture.received;
  }
  return picture;
}

Dictionary encodePictures(const std::map<std::string, RenderedEntry>& pictures) {
  Dictionary encoded;
  for (const auto& [kind, picture] : pictures) {
    encoded.set(kind, encodePicture(picture));
  }
  return encoded;
}

std::map<std::string, RenderedEntry> decodePictures(const Decoder& d) {
  std::map<std::string, RenderedEntry> pictures;
  for (const auto& [kind, picture] : d.members()) {
    pictures.emplace(kind, decodePicture(picture));
  }
  return pictures;
}

std::expected<void, std::string> removeFile(const std::filesystem::path& file) {
  std::error_code error;
  std::filesystem::remove(file, error);
  if (error) {
    return std::unexpected(
        file.string() + " cannot be removed: " + error.message() + "; remove it by hand");
  }
  return {};
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
  std::error_code error = makePrivateFolders(file.parent_path());
  if (!error) {
    error = writeWholeFile(file, *text);
  }
  if (error) {
    return std::unexpected(file.string() + " cannot be written: " + error.message());
  }
  return {};
}

std::filesystem::path asideOf(const std::filesystem::path& file) {
  return file.string() + ".unreadable";
}

std::expected<void, std::string> forgetAside(const std::filesystem::path& file) {
  return removeFile(asideOf(file));
}

std::expected<void, std::string> forgetOtherAccounts(
    const std::filesystem::path& file, const std::string& mark) {
  if (auto forgotten = forgetAside(file); !forgotten) {
    return forgotten;
  }
  auto state = readState(file);
  if (!state) {
    return removeFile(file);
  }
  std::optional<SavedHome>& home = *state;
  if (!home || home->account == mark) {
    return {};
  }
  home->pictures.clear();
  home->kept.clear();
  home->account = mark;
  return writeState(file, *home);
}

std::expected<std::string, std::string> encodeState(const SavedHome& state) {
  Array placed;
  for (const std::string& kind : state.placed) {
    placed.emplace_back(kind);
  }
  Dictionary document{
      {"version", formatVersion},
      {"catalogue", channel::toValue(channel::Catalogue{state.catalogue})},
      {"placed", std::move(placed)},
      {"pictures", encodePictures(state.pictures)},
      {"kept", encodePictures(state.kept)}};
  if (state.account) {
    document.set("account", *state.account);
  }
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
  state.pictures = decodePictures(d["pictures"]);
  if (const auto kept = d.find("kept")) {  // not in the files of earlier programs, as the account
    state.kept = decodePictures(*kept);
  }
  if (const auto account = d.find("account")) {
    state.account = account->text();
  }
  return d.result(std::move(state));
}

}  // namespace quillpad::home
