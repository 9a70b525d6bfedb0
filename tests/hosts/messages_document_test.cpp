// docs/messages.md has the tables of hosts/session/causes_table.cpp.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "session/causes_table.hpp"

namespace orvane::host {

namespace {

using Tables = std::vector<std::string>;  // each with its lines

// The tables of the document by their headings.
std::map<std::string, Tables> tablesOfDocument() {
  std::ifstream file(ORVANE_MESSAGES_FILE);
  EXPECT_TRUE(file) << "cannot read " ORVANE_MESSAGES_FILE;
  std::map<std::string, Tables> tables;
  std::string heading;
  bool isInTable = false;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("## ")) {
      heading = line.substr(3);
    }
    const bool isOfTable = line.starts_with("|");
    if (isOfTable && !isInTable) {
      tables[heading].emplace_back();
    }
    if (isOfTable) {
      tables[heading].back() += line + "\n";
    }
    isInTable = isOfTable;
  }
  return tables;
}

std::string rowOf(const std::vector<std::string>& cells) {
  std::string line = "|";
  for (const std::string& cell : cells) {
    line += cell.empty() ? " |" : " " + cell + " |";
  }
  return line + "\n";
}

std::string quoted(std::string_view code) {
  return "`" + std::string(code) + "`";
}

// Each of the functions in backquotes.
std::string functionsCell(std::string_view from) {
  std::string cell = quoted(from);
  for (std::size_t at = cell.find(", "); at != std::string::npos; at = cell.find(", ", at + 4)) {
    cell.replace(at, 2, "`, `");
  }
  return cell;
}

std::string tableOf(const MessageSection& section) {
  std::string table =
      rowOf({"message", "from", "cause", "cure", "for programs"}) + "|---|---|---|---|---|\n";
  for (const MessageRow& row : section.rows) {
    const bool isCode = row.from.empty();
    const std::string_view code = row.message.substr(row.message.rfind(' ') + 1);
    table += rowOf({isCode ? "code " + std::string(code) : quoted(row.message),
                    isCode ? "" : functionsCell(row.from), std::string(row.cause),
                    std::string(row.cure), std::string(row.forPrograms)});
  }
  return table;
}

std::string tableOf(std::span<const ResultCode> codes) {
  std::string table = rowOf({"code", "name", "meaning"}) + "|---|---|---|\n";
  for (const ResultCode& code : codes) {
    const std::string note(code.forPrograms);
    table += rowOf({std::to_string(code.code), quoted(code.name),
                    std::string(code.meaning) + (note.empty() ? "" : " (" + note + ")")});
  }
  return table;
}

TEST(MessagesDocument, HasTheTablesOfThePrograms) {
  std::map<std::string, Tables> expected;
  for (const MessageSection& section : messageSections()) {
    expected[std::string(section.heading)].push_back(tableOf(section));
    if (!section.codes.empty()) {
      expected["Result codes"].push_back(tableOf(section.codes));
    }
  }
  std::map<std::string, Tables> tables = tablesOfDocument();
  EXPECT_EQ(tables["Never seen"].size(), 1U);  // programs do not print these
  tables.erase("Never seen");
  for (const auto& [heading, ofHeading] : expected) {
    EXPECT_EQ(tables[heading].size(), ofHeading.size()) << heading;
    tables[heading].resize(ofHeading.size());
    for (std::size_t at = 0; at < ofHeading.size(); ++at) {
      EXPECT_TRUE(tables[heading][at] == ofHeading[at])
          << "The table in docs/messages.md below \"" << heading << "\" must be:\n"
          << ofHeading[at];
    }
    tables.erase(heading);
  }
  for (const auto& [heading, ofHeading] : tables) {
    ADD_FAILURE() << "No program has the table below \"" << heading << "\":\n" << ofHeading.front();
  }
}

}  // namespace

}  // namespace orvane::host
