#include "home/cards/InspectorText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <ranges>

#include "platform/foundation/Named.h"
#include "platform/foundation/Overloaded.h"
#include "platform/foundation/Utf8.h"
#include "platform/foundation/Value.h"
#include "platform/paint/DisplayList.h"

namespace quillpad::home {
namespace {

using drawing::Finding;
using drawing::Inspection;
using drawing::LayoutTrace;
using drawing::TracedNode;

std::string colorText(const ui::Color& color) {
  const std::string light = drawing::hexName(color.light);
  const std::string dark = drawing::hexName(color.dark);
  return light == dark ? light : light + "/" + dark;
}

// In quotes; a long one's beginning.
std::string inQuotes(std::string_view text) {
  constexpr int longest = 40;
  std::string result = "\"";
  std::size_t at = 0;
  for (int i = 0; i < longest && at < text.size(); ++i) {
    const char32_t character = nextCharacter(text, at);
    const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
    appendUtf8(result, isControl ? U' ' : character);
  }
  return result + (at < text.size() ? "…\"" : "\"");
}

std::string member(std::string_view name, std::optional<double> length) {
  return length ? " " + std::string(name) + " " + lengthText(*length) : "";
}

// A dimension of a flexible frame: "width 20" where its bounds are one length.
std::string dimension(
    const std::string& name,
    std::optional<double> min,
    std::optional<double> ideal,
    std::optional<double> max) {
  return min == max && min == ideal ? member(name, min)
                                    : member("min " + name, min) + member("ideal " + name, ideal) +
                                          member("max " + name, max);
}

std::string labelOf(const ui::Content& content) {
  return std::visit(
      Overloaded{
          [](const ui::Text& text) { return "text " + inQuotes(text.text); },
          [](const ui::Image& image) { return "image " + inQuotes(image.name); },
          [](const ui::Rectangle& rectangle) { return "rectangle " + colorText(rectangle.color); },
          [](const ui::Spacer&) { return std::string("spacer"); },
          [](const ui::Stack& stack) {
            return std::string(stack.axis == ui::Axis::vertical ? "vstack" : "hstack");
          }},
      content);
}

std::string labelOf(const ui::Modifier& modifier) {
  return std::visit(
      Overloaded{
          [](const ui::Padding& padding) {
            const auto& [top, leading, bottom, trailing] = padding.insets;
            return top == leading && top == bottom && top == trailing
                       ? "padding " + lengthText(top)
                       : "padding" + member("top", top) + member("leading", leading) +
                             member("bottom", bottom) + member("trailing", trailing);
          },
          [](const ui::Frame& frame) {
            return "frame" + member("width", frame.width) + member("height", frame.height);
          },
          [](const ui::FlexibleFrame& frame) {
            return "flexibleFrame" +
                   dimension("width", frame.minWidth, frame.idealWidth, frame.maxWidth) +
                   dimension("height", frame.minHeight, frame.idealHeight, frame.maxHeight);
          },
          [](const ui::Background& background) {
            return "background " + colorText(background.color);
          },
          [](const ui::ClipShape& shape) {
            return "clipShape" + member("cornerRadius", shape.cornerRadius);
          },
          [](const ui::WidgetUrl& link) { return "widgetURL " + inQuotes(link.address); }},
      modifier);
}

// "↑ 16 ↓ 16": the sides that are not 0.
std::string sidesText(double top, double right, double bottom, double left) {
  std::string text;
  for (const auto& [sign, length] :
       {std::pair("↑", top), std::pair("→", right), std::pair("↓", bottom), std::pair("←", left)}) {
    if (length != 0) {
      text += (text.empty() ? "" : " ") + std::string(sign) + " " + lengthText(length);
    }
  }
  return text;
}

const ui::Stack* stackOf(const TracedNode& node) {
  return node.modifier == nullptr ? std::get_if<ui::Stack>(&node.view->content) : nullptr;
}

const ui::Text* textOf(const TracedNode& node) {
  return node.modifier == nullptr ? std::get_if<ui::Text>(&node.view->content) : nullptr;
}

drawing::Size sizeOf(const drawing::Rect& frame) { return {frame.width, frame.height}; }

// The room between two neighbours of a stack, whichever comes first.
double gapBetween(const drawing::Rect& one, const drawing::Rect& next, ui::Axis axis) {
  return axis == ui::Axis::vertical
             ? next.y - one.y - one.height
             : std::max(next.x - one.x - one.width, one.x - next.x - next.width);
}

// Names and numbers stand in a text from right to left as they do elsewhere.
std::string isolated(const std::string& text, const Language& language) {
  return language.isRightToLeft() ? "\u2066" + text + "\u2069" : text;
}

// The facts of one node after another.
class FactFinder {
 public:
  FactFinder(const Inspection& inspection, const Language& language)
      : trace_(inspection.trace),
        language_(language),
        children_(trace_.nodes.size()),
        baselines_(trace_.nodes.size()) {
    for (std::size_t i = 0; i < trace_.nodes.size(); ++i) {
      if (const int parent = trace_.nodes[i].parent; parent >= 0) {
        children_[static_cast<std::size_t>(parent)].push_back(i);
      }
    }
    for (std::size_t i = 0; i < inspection.nodes.size(); ++i) {
      const int node = inspection.nodes[i];
      const auto* text = std::get_if<drawing::TextItem>(&inspection.list.items[i].content);
      if (text != nullptr && node >= 0) {
        baselines_[static_cast<std::size_t>(node)] = drawing::baselinesOf(*text);
      }
    }
  }

  Facts of(std::size_t node) const {
    const TracedNode& at = trace_.nodes[node];
    Facts facts;
    facts.rows = {
        {language_.text("Offered"),
         language_.text("{1} by {2}", {isolated(sizeText(at.proposed)), giverOf(at)})}};
    const auto add = [&](std::string name, const std::string& value) {
      if (!value.empty()) {
        facts.rows.emplace_back(std::move(name), isolated(value));
      }
    };
    add(language_.text("Takes"), sizeText(sizeOf(at.frame)));
    add(language_.text("Stands at"), lengthText(at.frame.x) + ", " + lengthText(at.frame.y));
    if (std::string gap = gapText(node); !gap.empty()) {
      facts.rows.emplace_back(language_.text("Gap before it"), std::move(gap));
    }
    add(language_.text("Children and (gaps)"), sharesText(static_cast<int>(node)));
    add(language_.text("Order of offers"), orderText(node));
    add(language_.text("In its stack"), sharesText(stackAround(node)));
    add(language_.text("Its turn"), turnText(node));
    if (at.modifier != nullptr && std::holds_alternative<ui::Padding>(*at.modifier)) {
      add(language_.text("Insets"), insetsText(at.frame, trace_.nodes[node + 1].frame));
    }
    if (const ui::Text* text = textOf(at)) {
      add(language_.text("Font"),
          lengthText(text->textFont.size) + " " +
              std::string(nameOf(ui::weightNames, text->textFont.weight)) +
              (text->color ? " " + colorText(*text->color) : ""));
    }
    add(language_.text("Baselines"), baselinesText(node));
    add(language_.text("All of it"), at.whole ? sizeText(*at.whole) : "");
    facts.baselines = baselines_[node];
    return facts;
  }

 private:
  std::string giverOf(const TracedNode& node) const {
    return node.parent < 0
               ? language_.text("the card")
               : isolated(nodeLabel(trace_.nodes[static_cast<std::size_t>(node.parent)]));
  }

  std::string isolated(const std::string& text) const { return home::isolated(text, language_); }

  // The gap to the neighbour before it, and which that is.
  std::string gapText(std::size_t node) const {
    const auto parent = static_cast<std::size_t>(std::max(trace_.nodes[node].parent, 0));
    const ui::Stack* stack = stackOf(trace_.nodes[parent]);
    const auto self = std::ranges::find(children_[parent], node);
    if (stack == nullptr || self == children_[parent].begin() || self == children_[parent].end()) {
      return "";
    }
    const TracedNode& before = trace_.nodes[*std::prev(self)];
    return language_.text(
        "{1} from {2}",
        {isolated(lengthText(gapBetween(before.frame, trace_.nodes[node].frame, stack->axis))),
         isolated(nodeLabel(before))});
  }

  // The innermost stack around the node; -1: none.
  int stackAround(std::size_t node) const {
    int around = trace_.nodes[node].parent;
    while (around >= 0 && stackOf(trace_.nodes[static_cast<std::size_t>(around)]) == nullptr) {
      around = trace_.nodes[static_cast<std::size_t>(around)].parent;
    }
    return around;
  }

  // How its children share the length of a stack: "hstack: 20 + (8) + 40 + 12"; else nothing.
  std::string sharesText(int node) const {
    const auto at = static_cast<std::size_t>(node);
    const ui::Stack* stack = node < 0 ? nullptr : stackOf(trace_.nodes[at]);
    if (stack == nullptr) {
      return "";
    }
    const ui::Axis axis = stack->axis;
    std::string text = nodeLabel(trace_.nodes[at]) + ": ";
    const drawing::Rect* previous = nullptr;
    for (const std::size_t child : children_[at] | std::views::take(maxListed)) {
      const drawing::Rect& frame = trace_.nodes[child].frame;
      if (previous != nullptr) {
        const std::string gap = lengthText(gapBetween(*previous, frame, axis));
        text += gap == "0" ? " + " : " + (" + gap + ") + ";
      }
      text += lengthText(axis == ui::Axis::vertical ? frame.height : frame.width);
      previous = &frame;
    }
    return children_[at].size() > maxListed ? text + " + …" : text;
  }

  // The children of a stack as they are offered room: "text "a" → spacer"; of others nothing.
  std::string orderText(std::size_t node) const {
    if (stackOf(trace_.nodes[node]) == nullptr || children_[node].size() < 2) {
      return "";
    }
    const auto turnOf = [this](std::size_t child) { return trace_.nodes[child].turn; };
    std::vector<std::size_t> order = children_[node];
    std::ranges::sort(order, {}, turnOf);
    std::string text;
    for (const std::size_t child : order | std::views::take(maxListed)) {
      text += (text.empty() ? "" : " → ") + nodeLabel(trace_.nodes[child]);
    }
    return order.size() > maxListed ? text + " → …" : text;
  }

  // When the child of a stack that the node belongs to is offered room, unless it is the only one.
  std::string turnText(std::size_t node) const {
    const int stack = stackAround(node);
    const std::size_t count = stack < 0 ? 0 : children_[static_cast<std::size_t>(stack)].size();
    if (count < 2) {
      return "";
    }
    const TracedNode* child = &trace_.nodes[node];
    while (child->parent != stack) {
      child = &trace_.nodes[static_cast<std::size_t>(child->parent)];
    }
    return language_.text("{1} of {2}", {std::to_string(child->turn), std::to_string(count)});
  }

  static std::string insetsText(const drawing::Rect& outer, const drawing::Rect& inner) {
    return sidesText(
        inner.y - outer.y,
        outer.x + outer.width - inner.x - inner.width,
        outer.y + outer.height - inner.y - inner.height,
        inner.x - outer.x);
  }

  std::string baselinesText(std::size_t node) const {
    std::string text;
    for (const double baseline : baselines_[node]) {
      text += (text.empty() ? "" : ", ") + lengthText(baseline);
    }
    return text;
  }

  static constexpr std::size_t maxListed = 20;

  const LayoutTrace& trace_;
  const Language& language_;
  std::vector<std::vector<std::size_t>> children_;
  std::vector<std::vector<double>> baselines_;
};

}  // namespace

std::string lengthText(double points) {
  constexpr double hundredths = 100;
  return std::isfinite(points)
             ? Number(std::round(points * hundredths) / hundredths + 0.0).stringValue()
             : "∞";
}

std::string sizeText(drawing::Size size) {
  return lengthText(size.width) + " × " + lengthText(size.height);
}

std::string nodeLabel(const TracedNode& node) {
  return node.modifier == nullptr ? labelOf(node.view->content) : labelOf(*node.modifier);
}

std::vector<std::size_t> depthsOf(const LayoutTrace& trace) {
  std::vector<std::size_t> depths;
  depths.reserve(trace.nodes.size());
  for (const TracedNode& node : trace.nodes) {
    depths.push_back(node.parent < 0 ? 0 : depths[static_cast<std::size_t>(node.parent)] + 1);
  }
  return depths;
}

std::string findingText(
    const Finding& finding, const LayoutTrace& trace, const Language& language) {
  const TracedNode& node = trace.nodes[static_cast<std::size_t>(finding.node)];
  const auto& [top, left, bottom, right] = finding.beyond;
  const std::string label = isolated(nodeLabel(node), language);
  const std::string offered = isolated(sizeText(node.proposed), language);
  const std::string taken = isolated(sizeText(sizeOf(node.frame)), language);
  const std::string beyond = isolated(sidesText(top, right, bottom, left), language);
  switch (finding.kind) {
    case Finding::Kind::cutOff:
      return language.text(
          "{1} is cut off: offered {2}, all of it takes {3}.",
          {label, offered, isolated(sizeText(node.whole.value_or(drawing::Size{})), language)});
    case Finding::Kind::overflows:
      return language.text(
          "{1} stands out of what is around it ({2}): offered {3}, it takes {4}.",
          {label, beyond, offered, taken});
    case Finding::Kind::leavesTheCard:
      break;
  }
  return language.text(
      "{1} leaves the card ({2}): offered {3}, it takes {4}.", {label, beyond, offered, taken});
}

std::vector<Facts> factsOf(const Inspection& inspection, const Language& language) {
  const FactFinder finder(inspection, language);
  std::vector<Facts> facts;
  facts.reserve(inspection.trace.nodes.size());
  for (std::size_t node = 0; node < inspection.trace.nodes.size(); ++node) {
    facts.push_back(finder.of(node));
  }
  return facts;
}

}  // namespace quillpad::home
