#include "home/page/Inspector.h"

#include <cstddef>
#include <string_view>
#include <vector>

#include "home/cards/InspectorText.h"
#include "home/page/PageFiles.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/Value.h"

namespace quillpad::home {
namespace {

using drawing::Inspection;

constexpr std::size_t maximumRows = drawing::maximumTracedNodes;

std::vector<drawing::Finding> findingsOf(const Inspection& inspection) {
  return drawing::findingsOf(inspection.trace, inspection.list.size, inspection.list.scale);
}

Array numbers(const drawing::Rect& frame) { return {frame.x, frame.y, frame.width, frame.height}; }

// What the script shows of a node that is pointed at.
std::string nodesJson(const Inspection& inspection, const Language& language) {
  const auto facts = factsOf(inspection, language);
  Array nodes;
  for (std::size_t i = 0; i < facts.size(); ++i) {
    const drawing::TracedNode& node = inspection.trace.nodes[i];
    Array rows;
    for (const auto& [name, value] : facts[i].rows) {
      rows.emplace_back(Array{name, value});
    }
    Dictionary members{
        {"label", nodeLabel(node)},
        {"parent", node.parent},
        {"frame", numbers(node.frame)},
        {"baselines", Array(facts[i].baselines.begin(), facts[i].baselines.end())},
        {"facts", std::move(rows)}};
    if (node.modifier != nullptr && std::holds_alternative<ui::Padding>(*node.modifier)) {
      members.set("inside", numbers(inspection.trace.nodes[i + 1].frame));
    }
    nodes.emplace_back(std::move(members));
  }
  return writeJson(nodes, JsonLayout::compact).value_or("[]");
}

Markup treeRows(const Inspection& inspection) {
  const auto depths = depthsOf(inspection.trace);
  std::vector<bool> isWarned(depths.size());
  for (const drawing::Finding& finding : findingsOf(inspection)) {
    isWarned[static_cast<std::size_t>(finding.node)] = true;
  }
  Markup rows;
  for (std::size_t i = 0; i < depths.size(); ++i) {
    const drawing::TracedNode& node = inspection.trace.nodes[i];
    rows += filled(
        page::inspectorNodeHtml,
        {{"node", escaped(std::to_string(i))},
         {"level", escaped(std::to_string(depths[i] + 1))},
         {"label", escaped(std::string(2 * depths[i], ' ') + nodeLabel(node))},
         {"warning", escaped(isWarned[i] ? "⚠ " : "")},
         {"offered", escaped(sizeText(node.proposed))},
         {"taken", escaped(sizeText({node.frame.width, node.frame.height}))}});
  }
  return rows;
}

// The lines of the JSON text before the first item, then the items.
Markup listRows(const Inspection& inspection, std::string_view json) {
  const std::size_t head = json.find("\n  {");
  Markup rows = escaped(json.substr(0, head));
  std::size_t at = head;
  for (std::size_t i = 0; i < inspection.list.items.size() && i < maximumRows; ++i) {
    const std::size_t end = json.find('\n', ++at);
    rows += filled(
        page::inspectorItemHtml,
        {{"node", escaped(std::to_string(inspection.nodes[i]))},
         {"line", escaped(json.substr(at, end - at))}});
    at = end;
  }
  return rows;
}

}  // namespace

Markup warningsMarkup(const Inspection& inspection, const Language& language) {
  Markup warnings;
  for (const drawing::Finding& finding : findingsOf(inspection)) {
    warnings += filled(
        page::inspectorWarningHtml,
        {{"node", escaped(std::to_string(finding.node))},
         {"warning", escaped(findingText(finding, inspection.trace, language))}});
  }
  return warnings.empty() ? warnings
                          : filled(page::inspectorWarningsHtml, {{"warnings", warnings}}, language);
}

Markup inspectorMarkup(
    const Inspection& inspection, const std::string& displayList, const Language& language) {
  const bool isWhole = inspection.trace.complete && inspection.list.items.size() <= maximumRows;
  return filled(
      page::inspectorHtml,
      {{"nodes", escaped(nodesJson(inspection, language))},
       {"tree", treeRows(inspection)},
       {"list", listRows(inspection, displayList)},
       {"left",
        escaped(
            isWhole
                ? ""
                : language.text("Only the first {1} are shown.", {std::to_string(maximumRows)}))}},
      language);
}

}  // namespace quillpad::home
