#include "home/commands/CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <functional>
#include <iostream>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "platform/channel/Messages.h"
#include "platform/foundation/NumberText.h"
#include "platform/foundation/Utf8.h"

namespace quillpad::home {
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
        ->take_last()
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
    addRender();
    addTree();
    addGallery();
    addCompare();
    addServe();
    addSettings();
  }

  std::expected<CommandLine, Failure> parse(int argc, const char* const* argv) {
    try {
      app_.parse(argc, argv);
      return CommandLine{chosen_(), extension_};
    } catch (const CLI::ParseError& error) {
      return told(error);
    }
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

  // A command that is chosen by its name and made once all options are known.
  template <class Choose>
  CLI::App* add(CLI::App& parent, const char* name, const char* description, Choose choose) {
    CLI::App* command = parent.add_subcommand(name, description);
    command->fallthrough();
    command->parse_complete_callback([this, choose] { chosen_ = choose; });
    return command;
  }

  void addKind(CLI::App* command) {
    command->add_option("kind", kind_, "The widget's kind, for example SalesSmallWidget")
        ->type_name("KIND")
        ->check([](const std::string& kind) {
          return isUtf8(kind) ? std::string() : "there is no widget of kind \"" + kind + '"';
        })
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

  void addChoiceOfEntry(CLI::App* command) {
    command->add_option("--state", state_, "The entry to draw")
        ->check(CLI::IsMember({"placeholder", "snapshot", "timeline"}))
        ->capture_default_str();
  }

  void addViewOptions(CLI::App* command) {
    addKind(command);
    addChoiceOfEntry(command);
    command->add_option("--entry", entryFile_, "An entry of your own, as snapshot --json prints it")
        ->type_name("FILE");
    command->add_option("--family", family_, "The widget's size class")
        ->check(CLI::IsMember({"systemSmall", "systemMedium"}));
  }

  void addScale(CLI::App* command) {
    command->add_option("--scale", scale_, "Device pixels per point")
        ->check(CLI::IsMember({"1", "2", "3"}))
        ->capture_default_str();
  }

  void addRender() {
    CLI::App* command = add(app_, "render", "Draw a widget", [this] {
      return RenderCommand{{view(), output_, format(), appearance(), std::stoi(scale_), size()}};
    });
    addViewOptions(command);
    command->add_option("-o,--output", output_, "Where to; -: standard output")
        ->type_name("FILE")
        ->required();
    command->add_option("--format", formatName_, "png, svg or json; else by the file's ending")
        ->check(CLI::IsMember({"png", "svg", "json"}));
    command->add_option("--appearance", appearance_, "The appearance to draw in")
        ->check(CLI::IsMember({"light", "dark", "unspecified"}))
        ->capture_default_str();
    addScale(command);
    command->add_option("--size", size_, "The card's size in points, for example 170x170")
        ->type_name("WxH");
  }

  void addTree() {
    addViewOptions(add(app_, "tree", "Print a widget's view tree as JSON", [this] {
      return TreeCommand{view()};
    }));
  }

  void addGallery() {
    CLI::App* command =
        add(app_,
            "gallery",
            "Draw all widgets, light and dark, with an index page; or check a gallery drawn before",
            [this] { return galleryCommand(); });
    command
        ->add_option("-o,--output", output_, "Where to; with --check, where to tell what changed")
        ->type_name("FOLDER");
    command->add_option("--check", recorded_, "The gallery to compare with")->type_name("FOLDER");
    addChoiceOfEntry(command);
    addScale(command);
    addTolerance(command);
  }

  Command galleryCommand() const {
    const int scale = std::stoi(scale_);
    if (!recorded_.empty()) {
      return CheckGalleryCommand{{recorded_, output_, state(), scale, tolerance_}};
    }
    if (output_.empty()) {
      throw CLI::ValidationError("gallery needs -o FOLDER or --check FOLDER");
    }
    return GalleryCommand{{output_, state(), scale}};
  }

  void addCompare() {
    CLI::App* command = add(app_, "compare", "Tell whether two PNG pictures look the same", [this] {
      return CompareCommand{{expected_, actual_, output_, tolerance_}};
    });
    command->add_option("expected", expected_, "The picture as it should be")
        ->type_name("EXPECTED")
        ->required();
    command->add_option("actual", actual_, "The picture as it is")->type_name("ACTUAL")->required();
    command->add_option("-o,--output", output_, "A picture of what differs")->type_name("DIFF.png");
    addTolerance(command);
  }

  void addTolerance(CLI::App* command) {
    command->add_option("--tolerance", tolerance_.channel, "How far a colour component may be off")
        ->check(CLI::Range(0, 255))
        ->capture_default_str();
    command->add_option("--pixels", tolerance_.pixels, "How many pixels may be off further")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();
  }

  ViewChoice view() const { return {kind_, state(), entryFile_, channel::familyFromName(family_)}; }

  EntryState state() const {
    if (state_ == "placeholder") {
      return EntryState::placeholder;
    }
    return state_ == "snapshot" ? EntryState::snapshot : EntryState::timeline;
  }

  ui::Appearance appearance() const {
    if (appearance_ == "light") {
      return ui::Appearance::light;
    }
    return appearance_ == "dark" ? ui::Appearance::dark : ui::Appearance::unspecified;
  }

  PictureFormat format() const {
    const std::string ending = std::filesystem::path(output_).extension();
    const auto format = pictureFormatFromName(
        !formatName_.empty() ? formatName_
                             : ending.substr(std::min<std::size_t>(1, ending.size())));
    if (!format) {
      throw CLI::ValidationError(
          output_ == "-" ? "-o - needs --format png, svg or json"
                         : "\"" + output_ + "\" ends in none of .png, .svg, .json");
    }
    return *format;
  }

  std::optional<drawing::Size> size() const {
    if (size_.empty()) {
      return std::nullopt;
    }
    constexpr double longest = 10'000;
    const std::size_t cross = size_.find('x');
    const double width = doubleFromText(size_.substr(0, cross)).value_or(0);
    const std::string afterCross = cross == std::string::npos ? "" : size_.substr(cross + 1);
    const double height = doubleFromText(afterCross).value_or(0);
    const auto fits = [](double length) { return length > 0 && length <= longest; };
    if (!fits(width) || !fits(height)) {
      throw CLI::ValidationError(
          "--size is width and height in points, above 0 and at most 10000, for example 170x170");
    }
    return drawing::Size{width, height};
  }

  void addServe() {
    CLI::App* command = add(app_, "serve", "Show the live home screen on this machine", [this] {
      return ServeCommand{static_cast<std::uint16_t>(port_)};
    });
    command->add_option("--port", port_, "The port of 127.0.0.1; 0: a free one")
        ->type_name("N")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
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
  std::function<Command()> chosen_;
  std::string extension_ = defaultExtension();
  std::string kind_;
  bool json_ = false;
  bool print_ = false;
  std::string state_ = "timeline";
  std::string entryFile_;
  std::string family_;
  std::string output_;
  std::string recorded_;
  std::string expected_;
  std::string actual_;
  drawing::Tolerance tolerance_;
  std::string formatName_;
  std::string appearance_ = "light";
  std::string scale_ = "2";
  std::string size_;
  int port_ = 8480;
  std::string businessId_;
  std::string tokenFile_;
  std::string currency_;
};

}  // namespace

std::expected<CommandLine, Failure> parseCommandLine(int argc, const char* const* argv) {
  return Parser().parse(argc, argv);
}

}  // namespace quillpad::home
