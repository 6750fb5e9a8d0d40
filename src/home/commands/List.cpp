#include "home/commands/Commands.h"
#include "home/commands/Printing.h"

namespace quillpad::home {
namespace {

struct List {
  bool json = false;

  void declare(Options& options) { options.flag("--json", json, "Print JSON"); }

  Done run(const CommandContext& context) const {
    auto extension = ExtensionClient::start(context.extension);
    if (!extension) {
      return std::unexpected(extension.error());
    }
    return printAnswer(extension->ask<channel::Catalogue>(channel::CatalogueRequest{}), json);
  }
};

}  // namespace

Command listCommand() {
  return command<List>("list", "List the widgets that the extension offers", "list --json");
}

}  // namespace quillpad::home
