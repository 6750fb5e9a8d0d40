// Rows of cells as aligned text for a terminal: columns as wide as their widest cell, two blanks
// apart, numbers to the right. Control characters in a cell show as blanks. A plain value.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace quillpad::home {

struct Cell {
  std::string text;
  bool alignedRight = false;
};

class TextTable {
 public:
  void addRow(std::vector<Cell> row) { rows_.push_back(std::move(row)); }

  // Each row as a line, behind so many blanks.
  std::string text(std::size_t indent) const;

 private:
  std::vector<std::vector<Cell>> rows_;
};

// The text without control characters, as it may be shown on a terminal.
std::string printable(std::string text);

}  // namespace quillpad::home
