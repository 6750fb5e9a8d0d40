// The command line, parsed: what a person asked for, as values.
#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <string>
#include <variant>

#include "home/commands/CompareCommands.h"
#include "home/commands/PictureCommands.h"
#include "home/commands/WidgetCommands.h"
#include "home/extension/Failure.h"

namespace quillpad::home {

struct ListCommand {
  OutputForm form = OutputForm::text;
};
struct ShowCommand {
  EntryState state = EntryState::timeline;
  std::string kind;
  OutputForm form = OutputForm::text;
};
struct TapCommand {
  std::string kind;
  TapAction action = TapAction::open;
};
struct RenderCommand {
  RenderChoice choice;
};
struct TreeCommand {
  ViewChoice choice;
};
struct GalleryCommand {
  GalleryChoice choice;
};
struct CompareCommand {
  CompareChoice choice;
};
struct CheckGalleryCommand {
  CheckChoice choice;
};
struct ServeCommand {
  std::uint16_t port = 0;  // 0: a free one
};
struct ShowSettingsCommand {};
struct SignInCommand {
  std::string businessId;
  std::string tokenFile;
};
struct SetCurrencyCommand {
  std::string currency;
};
struct SignOutCommand {};

using Command = std::variant<
    ListCommand,
    ShowCommand,
    TapCommand,
    RenderCommand,
    TreeCommand,
    GalleryCommand,
    CompareCommand,
    CheckGalleryCommand,
    ServeCommand,
    ShowSettingsCommand,
    SignInCommand,
    SetCurrencyCommand,
    SignOutCommand>;

struct CommandLine {
  Command command;
  std::filesystem::path extension;  // the program to start
};

// What the arguments ask for. --help and --version are answered on standard output at once and end
// as a success without a command: a failure with the status `done`.
std::expected<CommandLine, Failure> parseCommandLine(int argc, const char* const* argv);

}  // namespace quillpad::home
