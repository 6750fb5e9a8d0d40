#include "home/commands/CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <system_error>
#include <utility>

#include "home/commands/Files.h"
#include "home/commands/TextTable.h"
#include "platform/foundation/Locale.h"
#include "platform/foundation/Utf8.h"

namespace quillpad::home {
namespace {

constexpr const char* version = QUILLPAD_VERSION;

// The extension lies beside this program.
std::filesystem::path defaultExtension() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return program.parent_path() / "quillpad-widgets";
}

// How many letters must be added, left out or changed to get from one word to the other.
std::size_t distance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  for (std::size_t j = 0; j < row.size(); ++j) {
    row[j] = j;
  }
  for (std::size_t i = 1; i <= from.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i);
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t changed = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
      diagonal = std::exchange(row[j], std::min({row[j] + 1, row[j - 1] + 1, changed}));
    }
  }
  return row.back();
}

// The candidate that was probably meant; empty where there is none.
std::string nearest(const std::string& word, const std::vector<std::string>& candidates) {
  const auto distanceTo = [&](const std::string& candidate) { return distance(word, candidate); };
  const auto best = std::ranges::min_element(candidates, {}, distanceTo);
  return best == candidates.end() || distanceTo(*best) > 2 ? "" : *best;
}

class Parser {
 public:
  explicit Parser(const Program& program)
      : program_(program), app_(program.description, program.name) {
    app_.set_version_flag("--version", program.name + " " + version);
    app_.set_help_all_flag("--help-all", "Print the help of every command and exit");
    app_.add_option("--extension", extension_, "The extension to start")
        ->type_name("PATH")
        ->take_last()
        ->default_str("quillpad-widgets beside this program");
    app_.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app_.get_formatter()->label("Subcommands", "Commands");
    add(app_, program.commands);
    addHelp();
  }

  Done run(int argc, const char* const* argv) {
    try {
      app_.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
      return outcome(error);
    }
    return run_(
        {.extension = extension_,
         .account = program_.account,
         .askOverHttps = program_.askOverHttps});
  }

 private:
  void add(CLI::App& parent, const std::vector<Command>& commands) {
    parent.require_subcommand(1);
    parent.fallthrough();
    for (const Command& command : commands) {
      CLI::App& parser = *parent.add_subcommand(command.name, command.description);
      if (!command.prepare) {
        add(parser, command.subcommands);
        continue;
      }
      parser.fallthrough();
      parser.footer("Example: " + program_.name + " " + command.example);
      Options options(parser);
      parser.parse_complete_callback([this, run = command.prepare(options)] { run_ = run; });
    }
  }

  void addHelp() {
    CLI::App& help = *app_.add_subcommand("help", "Explain a command, with an example");
    help.add_option("command", helpTopic_, "The command, for example render")->type_name("COMMAND");
    help.parse_complete_callback(
        [this] { run_ = [this](const CommandContext&) { return explain(); }; });
  }

  Done explain() const {
    const CLI::App* topic = &app_;
    std::string name = program_.name;
    for (const std::string& word : helpTopic_) {
      name += " " + word;
      const auto named = topic->get_subcommands(
          [&](const CLI::App* command) { return command->get_name() == word; });
      topic = named.empty() ? nullptr : named.front();
      if (topic == nullptr) {
        return failure(
            ExitStatus::wrongUsage,
            "there is no command \"" + word + "\"; \"" + program_.name +
                " --help\" lists the commands");
      }
    }
    return print(topic->get_formatter()->make_help(topic, name, CLI::AppFormatMode::Normal));
  }

  // Of the command that was named, or of all.
  std::string whereHelpIs() const {
    std::string names;
    for (const CLI::App* level = &app_; !level->get_subcommands().empty();) {
      level = level->get_subcommands().front();
      names += " " + level->get_name();
    }
    return '"' + program_.name +
           (names.empty() ? " --help\" lists the commands" : " help" + names + "\" explains it");
  }

  std::string hintFor(const std::string& unknown) const {
    const CLI::App* command = &app_;
    while (!command->get_subcommands().empty()) {
      command = command->get_subcommands().front();
    }
    std::vector<std::string> candidates;
    for (const CLI::App* subcommand :
         command->get_subcommands([](const CLI::App*) { return true; })) {
      candidates.push_back(subcommand->get_name());
    }
    for (const CLI::App* level : {command, &app_}) {
      for (const CLI::Option* option : level->get_options()) {
        for (const std::string& name : option->get_lnames()) {
          candidates.push_back("--" + name);
        }
      }
    }
    const std::string meant = nearest(unknown, candidates);
    return meant.empty() ? whereHelpIs() : "did you mean \"" + meant + "\"?";
  }

  // --help and --version come as errors too.
  Done outcome(const CLI::ParseError& error) const {
    if (error.get_exit_code() == 0) {
      app_.exit(error, std::cout, std::cout);
      return {};
    }
    const std::vector<std::string> unknown = app_.remaining(true);
    if (!unknown.empty()) {
      return failure(
          ExitStatus::wrongUsage,
          "unknown argument \"" + unknown.front() + "\"; " + hintFor(unknown.front()));
    }
    std::string reason = error.what();
    std::ranges::replace(reason, '\n', ' ');
    return failure(ExitStatus::wrongUsage, reason + "; " + whereHelpIs());
  }

  const Program& program_;
  CLI::App app_;
  std::string extension_ = defaultExtension();
  std::vector<std::string> helpTopic_;
  Command::Run run_;
};

}  // namespace

void Options::text(
    const std::string& name,
    std::string& value,
    const std::string& help,
    const std::string& type,
    Need need) {
  parser_.add_option(name, value, help)->type_name(type)->required(need == Need::required);
}

void Options::kind(std::string& value) {
  parser_.add_option("kind", value, "The widget's kind, as list prints it")
      ->type_name("KIND")
      ->check([](const std::string& kind) {
        return isUtf8(kind) ? std::string() : "there is no widget of kind \"" + kind + '"';
      })
      ->required();
}

void Options::locale(const std::string& name, std::string& value, const std::string& help) {
  parser_.add_option(name, value, help)->type_name("LOCALE")->check([](const std::string& locale) {
    return namesLocale(locale) ? std::string()
                               : '"' + locale + "\" names no locale; give it as in de_DE";
  });
}

void Options::flag(const std::string& name, bool& value, const std::string& help) {
  parser_.add_flag(name, value, help);
}

void Options::flagOrText(
    const std::string& name,
    bool& given,
    std::string& value,
    const std::string& help,
    const std::string& type) {
  const auto take = [&given, &value](const std::vector<std::string>& texts) {
    given = true;
    value = texts.empty() ? "" : texts.front();
  };
  parser_.add_option_function<std::vector<std::string>>(name, take, help)
      ->type_name(type)
      ->expected(0, 1);
}

void Options::addNumber(
    const std::string& name,
    long preset,
    const std::string& help,
    long lowest,
    long highest,
    const std::function<void(long)>& take) {
  parser_.add_option_function<long>(name, take, help)
      ->check(CLI::Range(lowest, highest))
      ->default_str(std::to_string(preset));
}

// CLI11's own transformer of names into values would take the values' numbers as well.
void Options::addChoice(
    const std::string& name,
    const std::vector<std::string>& names,
    const std::string& preset,
    const std::string& help,
    const std::function<void(std::string_view)>& take) {
  parser_
      .add_option_function<std::string>(
          name, [take](const std::string& given) { take(given); }, help)
      ->check(CLI::IsMember(names))
      ->default_str(preset);
}

int runCommandLine(const Program& program, int argc, const char* const* argv) {
  const Done done = Parser(program).run(argc, argv);
  if (done) {
    return 0;
  }
  const auto& [status, reason] = done.error();
  std::string message = reason;
  const bool lacksAnswer = status == ExitStatus::dropped || status == ExitStatus::extensionEnded;
  if (lacksAnswer && program.account.mark && program.account.mark() == "") {
    message += (message.ends_with('.') ? " " : ". ") + program.account.hint;
  }
  std::fprintf(stderr, "%s: %s\n", program.name.c_str(), printable(message).c_str());
  return static_cast<int>(status);
}

}  // namespace quillpad::home
