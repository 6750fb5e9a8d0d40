// What the inspector shows of a card's nodes, for the page and for the command line. Names and
// numbers are as in the view tree, everything else in the reader's language. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "home/language/Language.h"
#include "platform/paint/Card.h"

namespace quillpad::home {

// "45.33", "∞"; at most two decimals.
std::string lengthText(double points);

// "45.33 × 21"
std::string sizeText(drawing::Size size);

// "hstack", `text "Sales"`, "padding 16"; long texts are cut off.
std::string nodeLabel(const drawing::TracedNode& node);

// How many nodes are around each.
std::vector<std::size_t> depthsOf(const drawing::LayoutTrace& trace);

// One sentence on what is wrong.
std::string findingText(
    const drawing::Finding& finding, const drawing::LayoutTrace& trace, const Language& language);

// What there is to know of a node.
struct Facts {
  std::vector<std::pair<std::string, std::string>> rows;  // names and values
  std::vector<double> baselines;
};

// Of each node.
std::vector<Facts> factsOf(const drawing::Inspection& inspection, const Language& language);

}  // namespace quillpad::home
