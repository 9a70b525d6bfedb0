// What a command reports when it ends: a text for a person or one JSON document.
#include "oc_capture/report.hpp"

#include <algorithm>
#include <iostream>

#include "session/causes.hpp"
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

void addReportingOptions(CommandOptions& options, Reporting& reporting) {
  options.addFlag("--quiet", reporting.isQuiet, "Write nothing but errors and the JSON document");
  options.addFlag("--json", reporting.asJson, "Write one JSON document at the end");
}

void reportFailure(const std::string& text, const std::string& about) {
  const std::string start = "oc_capture: ";
  std::string lines = start + about + explained(text) + "\n";
  for (std::size_t end = lines.find('\n'); end + 1 < lines.size();
       end = lines.find('\n', end + 1)) {
    lines.insert(end + 1, start);
  }
  std::cerr << lines;
}

void report(const Reporting& reporting, const Json& document, const std::string& text) {
  if (reporting.asJson) {
    std::cout << document.dump(2, ' ', false, Json::error_handler_t::replace) << "\n" << std::flush;
  } else if (!reporting.isQuiet) {
    std::cout << text << std::flush;
  }
}

Json orNull(const std::string& text) {
  return text.empty() ? Json() : Json(text);
}

std::string gapText(const GapCount& gaps) {
  if (gaps.gaps == 0) {
    return "none";
  }
  return std::to_string(gaps.gaps) + ", in which about " + std::to_string(gaps.missedFrames) +
         " frames are missing; the longest, " + decimal(gaps.longestGap * 1e3, 1) +
         " ms, after frame " + std::to_string(gaps.longestGapAfter);
}

Json gapsJson(const GapCount& gaps) {
  return {{"gaps", gaps.gaps},
          {"missedFrames", gaps.missedFrames},
          {"longestGapSeconds", gaps.longestGap},
          {"longestGapAfterFrame", gaps.gaps == 0 ? Json() : Json(gaps.longestGapAfter)}};
}

Json regionJson(const std::optional<Region>& region) {
  return region ? Json{{"x", region->left},
                       {"y", region->top},
                       {"width", region->width},
                       {"height", region->height}}
                : Json();
}

std::string frameText(const FrameLayout& layout, const std::optional<Region>& region) {
  return dimensionsText(layout.width, layout.height) + " " + formatName(layout.format) +
         (region ? " (region at " + std::to_string(region->left) + ", " +
                       std::to_string(region->top) + ")"
                 : "");
}

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
