#pragma once

#include <string>
#include <vector>

namespace corvane::console {

/// One column of a table.
struct Column {
  std::string heading;
  bool right = false;  ///< aligned to the right, for numbers
};

/// A table as lines of text: columns as wide as their widest cell, two blanks between them, no blanks at line ends.
/// Cells are made fit for a terminal.
[[nodiscard]] std::string FormatTable(const std::vector<Column>& columns, std::vector<std::vector<std::string>> rows);

}  // namespace corvane::console
