#include "home/extension/StateFile.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <system_error>
#include <utility>

#include "platform/foundation/Iso8601.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/WholeFile.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad::home {
namespace {

constexpr int formatVersion = 1;
constexpr std::size_t largestFile = std::size_t{64} * 1024 * 1024;

template <class T>
const T* member(const Dictionary& members, std::string_view key) {
  const Value* value = members.find(key);
  return value == nullptr ? nullptr : value->as<T>();
}

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

std::optional<Picture> decodePicture(const Value& value) {
  const auto* members = value.as<Dictionary>();
  if (members == nullptr) {
    return std::nullopt;
  }
  const auto* received = member<std::string>(*members, "received");
  const Value* entry = members->find("entry");
  const Value* view = members->find("view");
  if (received == nullptr || entry == nullptr || view == nullptr) {
    return std::nullopt;
  }
  const auto date = dateFromIso8601(*received);
  const Decoder entryDecoder(*entry);
  auto decodedEntry = entryDecoder.result(channel::entryFrom(entryDecoder));
  auto decodedView = ui::viewFromValue(*view);
  if (!date || !decodedEntry || !decodedView) {
    return std::nullopt;
  }
  Picture picture{
      .source = Picture::Source::timeline,
      .entry = *std::move(decodedEntry),
      .view = std::move(*decodedView),
      .received = *date};
  if (const auto* failure = member<Dictionary>(*members, "failure")) {
    const auto* code = member<Number>(*failure, "code");
    const auto* description = member<std::string>(*failure, "description");
    if (code == nullptr || description == nullptr ||
        std::abs(code->doubleValue()) > std::numeric_limits<int>::max()) {
      return std::nullopt;
    }
    picture.failure = {static_cast<int>(code->doubleValue()), *description};
  }
  return picture;
}

}  // namespace

std::optional<std::filesystem::path> stateFile() {
  const auto folderFrom = [](const char* variable) -> std::optional<std::filesystem::path> {
    const char* text = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe)
    return text != nullptr && *text == '/' ? std::optional<std::filesystem::path>(text)
                                           : std::nullopt;
  };
  if (const auto state = folderFrom("XDG_STATE_HOME")) {
    return *state / "quillpad" / "home.json";
  }
  if (const auto user = folderFrom("HOME")) {
    return *user / ".local" / "state" / "quillpad" / "home.json";
  }
  return std::nullopt;
}

std::expected<std::optional<SavedHome>, std::string> readState(const std::filesystem::path& file) {
  const auto text = readWholeFile(file, largestFile);
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
  const auto* members = document->as<Dictionary>();
  const auto* version = members == nullptr ? nullptr : member<Number>(*members, "version");
  if (version == nullptr || version->doubleValue() != formatVersion) {
    return std::unexpected("it is of another version");
  }
  const Value* catalogue = members->find("catalogue");
  const auto* placed = member<Array>(*members, "placed");
  const auto* pictures = member<Dictionary>(*members, "pictures");
  if (catalogue == nullptr || placed == nullptr || pictures == nullptr) {
    return std::unexpected("a part of it is missing");
  }
  SavedHome state;
  const Decoder items(*catalogue, "catalogue");
  state.catalogue = channel::catalogueFrom(items).items;
  if (!items.error().empty()) {
    return std::unexpected(items.error());
  }
  for (const Value& value : *placed) {
    const auto* kind = value.as<std::string>();
    if (kind == nullptr) {
      return std::unexpected("its list of placed widgets is of another form");
    }
    state.placed.push_back(*kind);
  }
  for (const auto& [kind, value] : *pictures) {
    auto picture = decodePicture(value);
    if (!picture) {
      return std::unexpected("its picture of " + kind + " is of another form");
    }
    state.pictures.emplace(kind, std::move(*picture));
  }
  return state;
}

}  // namespace quillpad::home
