// A command of quillpad-home: a struct that holds its options, declares them and runs.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "home/commands/Failure.h"
#include "home/commands/Options.h"
#include "home/extension/Account.h"
#include "home/page/AskOverHttps.h"

namespace quillpad::home {

// What the command line gives every command.
struct CommandContext {
  std::filesystem::path extension;  // the program to start
  Account account{};
  AskOverHttps askOverHttps{};
};

struct Command {
  using Run = std::function<Done(const CommandContext&)>;

  std::string name;
  std::string description;
  std::string example{};  // the arguments after the program's name
  std::function<Run(Options&)>
      prepare{};  // declares the options; empty where there are subcommands
  std::vector<Command> subcommands{};
};

// The command whose options and preset values are those of the struct.
template <class Struct>
Command command(
    const char* name, const char* description, const char* example, Struct preset = {}) {
  return {
      .name = name,
      .description = description,
      .example = example,
      .prepare = [preset = std::move(preset)](Options& options) -> Command::Run {
        const auto command = std::make_shared<Struct>(preset);
        command->declare(options);
        return [command](const CommandContext& context) { return command->run(context); };
      }};
}

}  // namespace quillpad::home
