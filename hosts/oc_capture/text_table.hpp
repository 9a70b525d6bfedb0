// Rows of texts as a table in columns.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orvane::host {

using TableRow = std::vector<std::string>;

/// One line for each row; all rows have the same number of columns. The first `textColumns` columns
/// are aligned to the left, the others to the right.
std::string textTable(const std::vector<TableRow>& rows, std::size_t textColumns);

}  // namespace orvane::host
