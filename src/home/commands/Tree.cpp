#include "home/cards/CardRenderer.h"
#include "home/cards/InspectorText.h"
#include "home/commands/CardChoice.h"
#include "home/commands/Commands.h"
#include "home/commands/Printing.h"
#include "home/commands/TextTable.h"
#include "home/commands/ViewChoice.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad::home {
namespace {

// A line for each node: what it is, as which of its stack's children it was offered what, what it
// takes, where it is placed; then what is probably not meant.
std::string framesText(const drawing::Inspection& inspection) {
  const drawing::LayoutTrace& trace = inspection.trace;
  const auto depths = depthsOf(trace);
  TextTable table;
  table.addRow({{"node"}, {"turn"}, {"offered"}, {"takes"}, {"stands at"}});
  for (std::size_t i = 0; i < trace.nodes.size(); ++i) {
    const auto& [x, y, width, height] = trace.nodes[i].frame;
    const int turn = trace.nodes[i].turn;
    table.addRow(
        {{std::string(2 * depths[i], ' ') + nodeLabel(trace.nodes[i])},
         {turn == 0 ? "" : std::to_string(turn)},
         {sizeText(trace.nodes[i].proposed)},
         {sizeText({width, height})},
         {lengthText(x) + ", " + lengthText(y)}});
  }
  std::string text = table.text(0);
  if (!trace.complete) {
    text += "Only the first " + std::to_string(drawing::maximumTracedNodes) + " are shown.\n";
  }
  for (const drawing::Finding& finding :
       drawing::findingsOf(trace, inspection.list.size, inspection.list.scale)) {
    text += "warning: " + printable(findingText(finding, trace, {})) + '\n';
  }
  return text;
}

struct Tree {
  ViewChoice view{};
  bool frames = false;
  CardChoice card{};

  void declare(Options& options) {
    view.declare(options);
    options.flag("--frames", frames, "Print what the layout makes of it, with warnings");
    card.declare(options);
  }

  Done run(const CommandContext& context) const {
    if (const auto checked = card.check(); !checked) {
      return checked;
    }
    auto extension = ExtensionClient::start(context.extension);
    if (!extension) {
      return std::unexpected(extension.error());
    }
    if (frames) {
      return printFrames(*extension);
    }
    const auto tree = viewOf(*extension, view);
    if (!tree) {
      return std::unexpected(tree.error());
    }
    return printJson(ui::toValue(*tree), JsonLayout::pretty);
  }

 private:
  Done printFrames(ExtensionClient& extension) const {
    CardRenderer cards;
    const auto request = card.request(extension, view);
    if (!request) {
      return std::unexpected(request.error());
    }
    const auto tree = viewOf(extension, view);
    if (!tree) {
      return std::unexpected(tree.error());
    }
    return print(framesText(cards.inspect(*tree, *request, view.localeOrOwn())));
  }
};

}  // namespace

Command treeCommand() {
  return command<Tree>(
      "tree",
      "Print a widget's view tree as JSON, or with --frames what the layout makes of it",
      "tree KIND --sample rows-long-names --frames");
}

}  // namespace quillpad::home
