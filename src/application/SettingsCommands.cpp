#include "application/SettingsCommands.h"

#include <cstddef>
#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "application/SignedInAccount.h"
#include "home/commands/Files.h"
#include "home/commands/TextTable.h"
#include "home/extension/StateFile.h"
#include "platform/settings/SettingsWriter.h"
#include "platform/settings/UserDefaults.h"
#include "support/SharedSettings.h"

namespace quillpad::application {
namespace {

using namespace home;

constexpr std::size_t maxTokenBytes = std::size_t{64} * 1024;

Done change(const std::function<void(Dictionary& objects)>& edit) {
  const auto changed = changeSettings(appGroup(), edit);
  if (!changed) {
    return failure(ExitStatus::notPossible, changed.error());
  }
  return {};
}

// What a home screen keeps of another business goes with the change, also while none runs.
Done changeAccount(const std::function<void(Dictionary& objects)>& edit) {
  if (Done changed = change(edit); !changed) {
    return changed;
  }
  const auto file = stateFile();
  const auto mark = signedInAccount().mark();
  if (!file || !mark) {
    return {};
  }
  if (const auto forgotten = forgetOtherAccounts(*file, *mark); !forgotten) {
    return failure(
        ExitStatus::notPossible,
        "the account is changed, but figures of the former one may be kept: " + forgotten.error());
  }
  return {};
}

// A text that can be kept in the store and be sent on: not empty, no control characters.
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
  auto input = readInput(tokenFile, maxTokenBytes);
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

struct Show {
  void declare(Options& /*options*/) {}

  Done run(const CommandContext& /*context*/) const {
    const std::filesystem::path store = UserDefaults::path(appGroup());
    const auto settings = UserDefaults::open(appGroup());
    if (!settings && settings.error() != SettingsError::absent) {
      return failure(
          ExitStatus::notPossible,
          "the settings in " + store.string() + " cannot be shown: " + describe(settings.error()));
    }

    const auto object = [&](const char* key) {
      return settings ? settings->object(key) : std::nullopt;
    };
    const auto businessId = object(businessIdKey);
    const auto token = object(tokenKey);
    const auto business = object(businessKey);
    const auto* members = business ? business->as<Dictionary>() : nullptr;
    const auto* tokenText = token ? token->as<std::string>() : nullptr;
    const bool hasToken = tokenText != nullptr && !tokenText->empty();

    TextTable table;
    table.addRow({{"store"}, {store.string()}});
    table.addRow({{"business id"}, {shownText(businessId ? &*businessId : nullptr)}});
    table.addRow({{"token"}, {hasToken ? "set" : shownText(token ? &*token : nullptr)}});
    table.addRow(
        {{"currency"}, {shownText(members == nullptr ? nullptr : members->find(currencyKey))}});
    return print(table.text(0));
  }
};

struct SignIn {
  std::string businessId{};
  std::string tokenFile{};

  void declare(Options& options) {
    options.text("--business-id", businessId, "The business's identifier", "ID", Need::required);
    options.text(
        "--token-file",
        tokenFile,
        "The file with the token; -: standard input",
        "FILE",
        Need::required);
  }

  Done run(const CommandContext& /*context*/) const {
    if (auto checked = checkText("the business identifier", businessId); !checked) {
      return checked;
    }
    const auto token = readToken(tokenFile);
    if (!token) {
      return std::unexpected(token.error());
    }
    return changeAccount([&](Dictionary& objects) {
      objects.set(businessIdKey, businessId);
      objects.set(tokenKey, *token);
    });
  }
};

struct SetCurrency {
  std::string currency{};

  void declare(Options& options) {
    options.text(
        "currency",
        currency,
        "Symbol, dash and code, for example \"€ - EUR\"",
        "CURRENCY",
        Need::required);
  }

  Done run(const CommandContext& /*context*/) const {
    if (auto checked = checkText("the currency", currency); !checked) {
      return checked;
    }
    return change([&](Dictionary& objects) {
      const Value* stored = objects.find(businessKey);
      const auto* members = stored == nullptr ? nullptr : stored->as<Dictionary>();
      Dictionary business = members == nullptr ? Dictionary() : *members;
      business.set(currencyKey, currency);
      objects.set(businessKey, std::move(business));
    });
  }
};

// The extension then drops requests for timelines until the next sign-in. Without the two keys it
// would end, which is what it does to a store that was never signed in.
struct SignOut {
  void declare(Options& /*options*/) {}

  Done run(const CommandContext& /*context*/) const {
    return changeAccount([](Dictionary& objects) {
      objects.set(businessIdKey, "");
      objects.set(tokenKey, "");
    });
  }
};

}  // namespace

Command settingsCommand() {
  return {
      .name = "settings",
      .description = "Show and change what the application shares with the extension",
      .subcommands = {
          command<Show>(
              "show", "Print what is set; of the token only whether it is", "settings show"),
          command<SignIn>(
              "sign-in",
              "Store business and token",
              "settings sign-in --business-id ID --token-file -"),
          command<SetCurrency>("currency", "Store the currency", "settings currency \"€ - EUR\""),
          command<SignOut>("sign-out", "Empty business and token", "settings sign-out")}};
}

}  // namespace quillpad::application
