#include "text_table.h"

#include <algorithm>
#include <cstddef>

#include "base/outside_text.h"

namespace corvane::console {
namespace {

/// Characters of a UTF-8 text.
std::size_t Width(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string FormatRow(const std::vector<Column>& columns, const std::vector<std::size_t>& widths,
                      const std::vector<std::string>& cells) {
  std::string line;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::string padding(widths[i] - Width(cells[i]), ' ');
    if (i > 0) line += "  ";
    line += columns[i].right ? padding + cells[i] : cells[i] + padding;
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line + "\n";
}

}  // namespace

std::string FormatTable(const std::vector<Column>& columns, std::vector<std::vector<std::string>> rows) {
  for (auto& row : rows) std::transform(row.begin(), row.end(), row.begin(), Printable);
  std::vector<std::string> headings;
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    headings.push_back(columns[i].heading);
    std::size_t width = Width(columns[i].heading);
    for (const auto& row : rows) width = std::max(width, Width(row[i]));
    widths.push_back(width);
  }
  std::string table = FormatRow(columns, widths, headings);
  for (const auto& row : rows) table += FormatRow(columns, widths, row);
  return table;
}

}  // namespace corvane::console
