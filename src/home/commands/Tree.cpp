#include "home/commands/Commands.h"
#include "home/commands/Printing.h"
#include "home/commands/ViewChoice.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad::home {
namespace {

struct Tree {
  ViewChoice view{};

  void declare(Options& options) { view.declare(options); }

  Done run(const CommandContext& context) const {
    auto extension = ExtensionClient::start(context.extension);
    if (!extension) {
      return std::unexpected(extension.error());
    }
    const auto tree = viewOf(*extension, view);
    if (!tree) {
      return std::unexpected(tree.error());
    }
    return printJson(ui::toValue(*tree), JsonLayout::pretty);
  }
};

}  // namespace

Command treeCommand() {
  return command<Tree>("tree", "Print a widget's view tree as JSON", "tree KIND --state snapshot");
}

}  // namespace quillpad::home
