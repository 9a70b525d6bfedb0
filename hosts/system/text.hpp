// Text: UTF-8, numbers, lists, points in time, and file names.
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::host {

/// The same text with every byte sequence that is not UTF-8 replaced by U+FFFD.
std::string validUtf8(const std::string& text);

/// The beginning of the text, at most `bytes` long. No character is split.
std::string_view utf8Beginning(std::string_view text, std::size_t bytes);

/// How many characters the text has.
std::size_t utf8Length(std::string_view text);

/// True when `text` contains `part`; the letters A to Z count as equal to a to z.
bool containsIgnoringCase(std::string_view text, std::string_view part);

/// A number in decimal notation, with as many decimals as tell it from all other numbers.
std::string decimal(double number);

/// A number in decimal notation, rounded to this many decimals.
std::string decimal(double number, int decimals);

/// As in "640 x 480".
std::string dimensionsText(int width, int height);

/// The text between quotation marks, for a sentence.
std::string inQuotes(std::string_view text);

/// The items, or the texts that `textOf` makes of them, with the separator between them.
template <class Items, class TextOf = std::identity>
std::string joined(const Items& items, std::string_view separator, TextOf textOf = {}) {
  std::string list;
  for (const auto& item : items) {
    list += list.empty() ? std::string_view() : separator;
    list += textOf(item);
  }
  return list;
}

/// "a", "a or b", "a, b or c".
std::string alternatives(const std::vector<std::string>& items);

/// A point in time in UTC to the microsecond, as in "2024-02-29T23:05:07.004200".
std::string utcText(std::chrono::system_clock::time_point time);

/// A path from its text in UTF-8. Throws std::system_error or another std::exception if the text is
/// not UTF-8.
std::filesystem::path pathFromUtf8(std::string_view text);

/// A path's text in UTF-8.
std::string utf8FromPath(const std::filesystem::path& path);

}  // namespace orvane::host
