// What a command reports when it ends: a text for a person or one JSON document.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "imaging/region.hpp"
#include "oc_capture/command.hpp"
#include "session/frame_timing.hpp"
#include "system/failures.hpp"

namespace orvane::host {

using Json = nlohmann::ordered_json;

struct Reporting {
  bool isQuiet = false;  ///< nothing but errors and the JSON document
  bool asJson = false;   ///< one JSON document at the end, instead of a text
};

/// "--quiet" and "--json".
void addReportingOptions(CommandOptions& options, Reporting& reporting);

/// Writes a failure to standard error: the text of the library or of another exception, with what
/// it means and what to do as far as that is known. `about` comes before it.
void reportFailure(const std::string& text, const std::string& about = "");

/// What `work` throws, except UsageError, as a text; empty if it does its work.
template <class Work>
std::string failureOf(Work work) {
  try {
    work();
    return "";
  } catch (const UsageError&) {
    throw;
  } catch (const std::exception& error) {
    return error.what();
  }
}

/// Writes the JSON document or the text to standard output, or nothing if quiet.
void report(const Reporting& reporting, const Json& document, const std::string& text);

/// The value, or null if there is none.
template <class Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

/// The value, or null if it is not known.
template <class Value>
Json ifKnown(bool isKnown, const Value& value) {
  return isKnown ? Json(value) : Json();
}

/// The text, or null if it is empty.
Json orNull(const std::string& text);

/// The gaps of a recording: "none", or how many and how long.
std::string gapText(const GapCount& gaps);

/// The same as members of a JSON document.
Json gapsJson(const GapCount& gaps);

/// The region as an object, or null if there is none.
Json regionJson(const std::optional<Region>& region);

/// What a frame is, for a sentence: "640 x 480 raw8", with the place of a region.
std::string frameText(const FrameLayout& layout, const std::optional<Region>& region);

using TableRow = std::vector<std::string>;

/// One line for each row; all rows have the same number of columns. The first `textColumns` columns
/// are aligned to the left, the others to the right.
std::string textTable(const std::vector<TableRow>& rows, std::size_t textColumns);

}  // namespace orvane::host
