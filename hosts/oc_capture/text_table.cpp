// Rows of texts as a table in columns.
#include "oc_capture/text_table.hpp"

#include <algorithm>

#include "system/text.hpp"

namespace orvane::host {

namespace {

std::size_t columnWidth(const std::vector<TableRow>& rows, std::size_t column) {
  std::size_t width = 0;
  for (const TableRow& row : rows) {
    width = std::max(width, utf8Length(row[column]));
  }
  return width;
}

}  // namespace

std::string textTable(const std::vector<TableRow>& rows, std::size_t textColumns) {
  std::vector<std::string> lines(rows.size());
  const std::size_t columns = rows.front().size();
  for (std::size_t column = 0; column < columns; ++column) {
    const std::size_t width = columnWidth(rows, column);
    for (std::size_t row = 0; row < rows.size(); ++row) {
      const std::string& text = rows[row][column];
      const std::string space(width - utf8Length(text), ' ');
      lines[row] += column == 0 ? "" : "  ";
      lines[row] += column < textColumns ? text + space : space + text;
    }
  }
  std::string table;
  for (const std::string& line : lines) {
    table += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  }
  return table;
}

}  // namespace orvane::host
