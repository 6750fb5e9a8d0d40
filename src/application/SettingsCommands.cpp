#include "application/SettingsCommands.h"

#include <cstddef>
#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "home/commands/Files.h"
#include "home/commands/TextTable.h"
#include "platform/settings/SettingsWriter.h"
#include "platform/settings/UserDefaults.h"

namespace quillpad::home {
namespace {

constexpr const char* appGroup = QUILLPAD_APP_GROUP;
constexpr std::size_t longestToken = std::size_t{64} * 1024;

Done change(const std::function<void(Dictionary& objects)>& edit) {
  const auto changed = changeSettings(appGroup, edit);
  if (!changed) {
    return failure(ExitStatus::notPossible, changed.error());
  }
  return {};
}

// A text that can stand in the store and be sent on: not empty, no control characters.
Done checkText(const std::string& name, const std::string& text) {
  if (text.empty()) {
    return failure(ExitStatus::wrongUsage, name + " is empty");
  }
  if (text != printable(text)) {
    return failure(
        ExitStatus::wrongUsage, name + " holds a line break or another control character");
  }
  return {};
}

std::expected<std::string, Failure> readToken(const std::string& tokenFile) {
  auto input = readInput(tokenFile, longestToken);
  if (!input) {
    return input;
  }
  std::string token = std::move(*input);
  if (token.ends_with('\n')) {
    token.pop_back();
    if (token.ends_with('\r')) {
      token.pop_back();
    }
  }
  if (auto checked = checkText("the token in " + inputName(tokenFile), token); !checked) {
    return std::unexpected(checked.error());
  }
  return token;
}

std::string shownText(const Value* value) {
  if (value == nullptr) {
    return "not set";
  }
  const auto* text = value->as<std::string>();
  if (text == nullptr) {
    return "not a text";
  }
  return text->empty() ? "empty (signed out)" : *text;
}

}  // namespace

Done showSettings() {
  const std::filesystem::path store = UserDefaults::path(appGroup);
  const auto settings = UserDefaults::open(appGroup);
  std::error_code ignored;
  if (!settings && std::filesystem::exists(store, ignored)) {
    return failure(
        ExitStatus::notPossible,
        "the settings store " + store.string() +
            " cannot be read as a property list; mend it or move it away, then sign in again");
  }

  const auto object = [&](const char* key) {
    return settings ? settings->object(key) : std::nullopt;
  };
  const auto businessId = object("businessId");
  const auto token = object("token");
  const auto business = object("currentBusiness");
  const auto* members = business ? business->as<Dictionary>() : nullptr;
  const std::string tokenText = shownText(token ? &*token : nullptr);
  const auto* isText = token ? token->as<std::string>() : nullptr;

  TextTable table;
  table.addRow({{"store"}, {store.string()}});
  table.addRow({{"business id"}, {shownText(businessId ? &*businessId : nullptr)}});
  table.addRow({{"token"}, {isText != nullptr && !isText->empty() ? "set" : tokenText}});
  table.addRow(
      {{"currency"}, {shownText(members == nullptr ? nullptr : members->find("currency"))}});
  return print(table.text(0));
}

Done signIn(const std::string& businessId, const std::string& tokenFile) {
  if (auto checked = checkText("the business identifier", businessId); !checked) {
    return checked;
  }
  const auto token = readToken(tokenFile);
  if (!token) {
    return std::unexpected(token.error());
  }
  return change([&](Dictionary& objects) {
    objects.set("businessId", businessId);
    objects.set("token", *token);
  });
}

Done setCurrency(const std::string& currency) {
  if (auto checked = checkText("the currency", currency); !checked) {
    return checked;
  }
  return change([&](Dictionary& objects) {
    const Value* stored = objects.find("currentBusiness");
    const auto* members = stored == nullptr ? nullptr : stored->as<Dictionary>();
    Dictionary business = members == nullptr ? Dictionary() : *members;
    business.set("currency", currency);
    objects.set("currentBusiness", std::move(business));
  });
}

Done signOut() {
  return change([](Dictionary& objects) {
    objects.set("businessId", "");
    objects.set("token", "");
  });
}

}  // namespace quillpad::home
