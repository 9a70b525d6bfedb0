// Text: UTF-8, numbers, lists, and file names.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::host {

/// The same text with every byte sequence that is not UTF-8 replaced by U+FFFD.
std::string validUtf8(const std::string& text);

/// The text's beginning, at most `bytes` long, cut between two characters.
std::string_view utf8Beginning(std::string_view text, std::size_t bytes);

/// How many characters the text has.
std::size_t utf8Length(std::string_view text);

/// True when `text` contains `part`; the letters A to Z count as equal to a to z.
bool containsIgnoringCase(std::string_view text, std::string_view part);

/// A number in decimal notation, with as many decimals as it takes to tell it from others.
std::string decimal(double number);

/// A number in decimal notation, rounded to this many decimals.
std::string decimal(double number, int decimals);

/// The text between quotation marks, for a sentence.
std::string inQuotes(std::string_view text);

/// The texts of some items, made by `textOf`, with the separator between them.
template <class Items, class TextOf>
std::string joined(const Items& items, std::string_view separator, TextOf textOf) {
  std::string list;
  for (const auto& item : items) {
    list += list.empty() ? std::string_view() : separator;
    list += textOf(item);
  }
  return list;
}

/// "a", "a or b", "a, b or c".
std::string alternatives(const std::vector<std::string>& items);

/// A path from its text in UTF-8. Throws std::system_error or a like exception for text that is
/// not.
std::filesystem::path pathFromUtf8(std::string_view text);

/// A path's text in UTF-8.
std::string utf8FromPath(const std::filesystem::path& path);

}  // namespace orvane::host
