#include "home/CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <iostream>
#include <optional>
#include <sstream>
#include <system_error>
#include <vector>

namespace home {
namespace {

constexpr const char* version = "quillpad-home 1.0";

// The extension lies beside this program.
std::filesystem::path defaultExtension() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return program.parent_path() / "quillpad-widgets";
}

// The commands as CLI11 fills them; the one that was given becomes the result.
class Parser {
 public:
  Parser() {
    app_.set_version_flag("--version", version);
    app_.set_help_all_flag("--help-all", "Print the help of every command and exit");
    app_.add_option("--extension", extension_, "The extension to start")
        ->type_name("PATH")
        ->default_str("quillpad-widgets beside this program");
    app_.require_subcommand(1);
    app_.fallthrough();
    app_.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app_.get_formatter()->label("Subcommands", "Commands");
    addList();
    addShow("placeholder", "Print the widget's placeholder", EntryState::placeholder);
    addShow("snapshot", "Print the widget's snapshot", EntryState::snapshot);
    addShow("timeline", "Fetch the widget's timeline and print it", EntryState::timeline);
    addTap();
    addSettings();
  }

  std::expected<CommandLine, Failure> parse(int argc, const char* const* argv) {
    try {
      app_.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
      return told(error);
    }
    return CommandLine{std::move(*command_), extension_};
  }

 private:
  // --help and --version come as errors too.
  std::unexpected<Failure> told(const CLI::ParseError& error) const {
    if (error.get_exit_code() == 0) {
      app_.exit(error, std::cout, std::cout);
      return failure(ExitStatus::done, {});
    }
    const std::vector<std::string> unknown = app_.remaining(true);
    std::string reason =
        unknown.empty() ? error.what() : "unknown argument \"" + unknown.front() + "\"";
    std::ranges::replace(reason, '\n', ' ');
    return failure(
        ExitStatus::wrongUsage, reason + "; \"quillpad-home --help\" tells the commands");
  }

  // A command whose choice is made when its options are known.
  template <class Choose>
  CLI::App* add(CLI::App& parent, const char* name, const char* description, Choose choose) {
    CLI::App* command = parent.add_subcommand(name, description);
    command->fallthrough();
    command->parse_complete_callback([this, choose] { command_ = choose(); });
    return command;
  }

  void addKind(CLI::App* command) {
    command->add_option("kind", kind_, "The widget's kind, for example SalesSmallWidget")
        ->type_name("KIND")
        ->required();
  }

  void addJson(CLI::App* command) { command->add_flag("--json", json_, "Print JSON"); }

  OutputForm form() const { return json_ ? OutputForm::json : OutputForm::text; }

  void addList() {
    addJson(add(app_, "list", "List the widgets that the extension offers", [this] {
      return ListCommand{form()};
    }));
  }

  void addShow(const char* name, const char* description, EntryState state) {
    CLI::App* command =
        add(app_, name, description, [this, state] { return ShowCommand{state, kind_, form()}; });
    addKind(command);
    addJson(command);
  }

  void addTap() {
    CLI::App* command = add(app_, "tap", "Open the widget's deep link, as a tap would", [this] {
      return TapCommand{kind_, print_ ? TapAction::print : TapAction::open};
    });
    addKind(command);
    command->add_flag("--print", print_, "Print the link instead");
  }

  void addSettings() {
    CLI::App* settings = app_.add_subcommand(
        "settings", "Show and change what the application shares with the extension");
    settings->require_subcommand(1);
    settings->fallthrough();
    add(*settings, "show", "Print what is set", [] { return ShowSettingsCommand{}; });
    add(*settings, "sign-out", "Empty business and token", [] { return SignOutCommand{}; });

    CLI::App* signIn = add(*settings, "sign-in", "Store business and token", [this] {
      return SignInCommand{businessId_, tokenFile_};
    });
    signIn->add_option("--business-id", businessId_, "The business's identifier")
        ->type_name("ID")
        ->required();
    signIn->add_option("--token-file", tokenFile_, "The file with the token; -: standard input")
        ->type_name("FILE")
        ->required();

    CLI::App* currency = add(*settings, "currency", "Store the currency", [this] {
      return SetCurrencyCommand{currency_};
    });
    currency->add_option("currency", currency_, "Symbol, dash and code, for example \"€ - EUR\"")
        ->type_name("CURRENCY")
        ->required();
  }

  CLI::App app_{"The home screen of the Quillpad widgets.", "quillpad-home"};
  std::optional<Command> command_;
  std::string extension_ = defaultExtension();
  std::string kind_;
  bool json_ = false;
  bool print_ = false;
  std::string businessId_;
  std::string tokenFile_;
  std::string currency_;
};

}  // namespace

std::expected<CommandLine, Failure> parseCommandLine(int argc, const char* const* argv) {
  return Parser().parse(argc, argv);
}

}  // namespace home
