// The command line: finds the command that the arguments name, fills its options and runs it.
#pragma once

#include <string>
#include <vector>

#include "home/commands/Command.h"
#include "home/extension/Account.h"
#include "home/page/AskOverHttps.h"

namespace quillpad::home {

struct Program {
  std::string name;
  std::string description;
  std::vector<Command> commands;
  Account account{};
  AskOverHttps askOverHttps{};
};

// Runs the command and returns the program's exit status. A failure is one line on standard error.
int runCommandLine(const Program& program, int argc, const char* const* argv);

}  // namespace quillpad::home
