// Parses the message tables of docs/messages.md.
#include "support/message_table.hpp"

#include <fstream>
#include <stdexcept>

namespace orvane::testing {

namespace {

constexpr std::string_view headingMark = "## ";
constexpr std::string_view rowMark = "| `";

// The texts in backquotes, in order.
std::vector<std::string> quotedTexts(const std::string& cells) {
  std::vector<std::string> texts;
  std::size_t start = cells.find('`');
  while (start != std::string::npos) {
    const std::size_t end = cells.find('`', start + 1);
    if (end == std::string::npos) {
      throw std::runtime_error("unfinished quotation: " + cells);
    }
    texts.push_back(cells.substr(start + 1, end - start - 1));
    start = cells.find('`', end + 1);
  }
  return texts;
}

// The first two cells of a row.
MessageRow rowOf(const std::string& line) {
  const std::size_t second = line.find('|', 1) + 1;
  return {quotedTexts(line.substr(0, second)).at(0),
          quotedTexts(line.substr(second, line.find('|', second) - second))};
}

}  // namespace

std::vector<MessageRow> messageRows(std::string_view heading) {
  std::ifstream file(ORVANE_MESSAGES_FILE);
  if (!file) {
    throw std::runtime_error("cannot read " ORVANE_MESSAGES_FILE);
  }
  std::vector<MessageRow> rows;
  bool isUnderHeading = false;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(headingMark)) {
      isUnderHeading = line.substr(headingMark.size()) == heading;
    } else if (isUnderHeading && line.starts_with(rowMark)) {
      rows.push_back(rowOf(line));
    }
  }
  return rows;
}

}  // namespace orvane::testing
