// Parses the message tables of docs/messages.md.
#include "support/message_table.hpp"

#include <fstream>
#include <regex>
#include <stdexcept>

namespace orvane::testing {

std::vector<MessageRow> messageRows(std::string_view heading) {
  static const std::regex messageAndExports(R"(\| `([^`]+)` \| ([^|]+) \|.*)");
  static const std::regex exportName(R"(oc_\w+)");
  std::ifstream file(ORVANE_MESSAGES_FILE);
  if (!file) {
    throw std::runtime_error("cannot read " ORVANE_MESSAGES_FILE);
  }
  std::vector<MessageRow> rows;
  bool isUnderHeading = false;
  for (std::string line; std::getline(file, line);) {
    std::smatch cells;
    if (line.starts_with("## ")) {
      isUnderHeading = line.substr(3) == heading;
    } else if (isUnderHeading && line.starts_with("| `")) {
      if (!std::regex_match(line, cells, messageAndExports)) {
        throw std::runtime_error("no message and exports: " + line);
      }
      const std::string exports = cells[2];
      const std::sregex_token_iterator names(exports.begin(), exports.end(), exportName);
      rows.push_back({cells[1], {names, {}}});
    }
  }
  return rows;
}

}  // namespace orvane::testing
