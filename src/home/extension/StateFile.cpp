#include "home/extension/StateFile.h"

#include <system_error>
#include <utility>

#include "platform/foundation/Codec.h"
#include "platform/foundation/Json.h"
#include "platform/os/UserFolders.h"
#include "platform/os/WholeFile.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad {
namespace {

struct CatalogueCodec {
  static Value encode(const std::vector<channel::CatalogueItem>& items) {
    return channel::toValue(channel::Catalogue{items});
  }
  static std::vector<channel::CatalogueItem> decode(const Decoder& d) {
    return channel::catalogueFrom(d).items;
  }
};

struct EntryCodec {
  static Value encode(const channel::Entry& entry) { return channel::toValue(entry); }
  static channel::Entry decode(const Decoder& d) { return channel::entryFrom(d); }
};

struct ViewCodec {
  static Value encode(const home::SharedView& view) { return ui::toValue(*view); }
  static home::SharedView decode(const Decoder& d) {
    return std::make_shared<const ui::View>(ui::viewFrom(d));
  }
};

}  // namespace

template <>
constexpr std::tuple fieldsOf<home::FailedTransfer>{
    Field{"code", &home::FailedTransfer::code},
    Field{"description", &home::FailedTransfer::localizedDescription},
    Field{"since", &home::FailedTransfer::since, Presence::defaulted}};

template <>
constexpr std::tuple fieldsOf<home::RenderedEntry>{
    Field{"received", &home::RenderedEntry::received},
    fieldAs<EntryCodec>("entry", &home::RenderedEntry::entry),
    fieldAs<ViewCodec>("view", &home::RenderedEntry::view),
    Field{"failure", &home::RenderedEntry::failure}};

// Earlier programs kept neither figures beside those of failed transfers nor the account.
template <>
constexpr std::tuple fieldsOf<home::SavedHome>{
    fieldAs<CatalogueCodec>("catalogue", &home::SavedHome::catalogue),
    Field{"placed", &home::SavedHome::placed},
    Field{"pictures", &home::SavedHome::pictures},
    Field{"kept", &home::SavedHome::kept, Presence::defaulted},
    Field{"account", &home::SavedHome::account}};

namespace home {
namespace {

constexpr int formatVersion = 1;
constexpr std::size_t maxFileBytes = std::size_t{64} * 1024 * 1024;

// What is in no file: that all are of timelines, and in those of earlier programs since when
// transfers fail.
void complete(std::map<std::string, RenderedEntry>& pictures) {
  for (auto& [kind, picture] : pictures) {
    picture.source = EntrySource::timeline;
    if (picture.failure && picture.failure->since == Date()) {
      picture.failure->since = picture.received;
    }
  }
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
  Dictionary document{{"version", formatVersion}};
  encodeMembers(document, state);
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
  auto state = decode<SavedHome>(d);
  complete(state.pictures);
  complete(state.kept);
  return d.result(std::move(state));
}

}  // namespace home
}  // namespace quillpad
