// Names of recordings and pictures, made from a template.
#pragma once

#include <ctime>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>

namespace orvane::host {

/// What the fields of a template stand for, in UTF-8. Values may be empty.
struct NameValues {
  std::tm localTime = {};  ///< {date} as in 2026-11-22 and {time} as in 20-15-03
  std::string camera;      ///< {camera}
  std::string target;      ///< {target}
  std::string filter;      ///< {filter}
  std::string observer;    ///< {observer}
};

/// The template that is used where none is given.
constexpr const char* usualNameTemplate = "{date}_{time}_{camera}";

/// The fields of a template, for a help text: "{date}, {time}, ...".
std::string nameFields();

/// Throws UsageError, with a sentence that lists the fields, if the template has another field, a
/// brace without its partner, or no text at all. `option` is what the sentence names.
void requireNameTemplate(const std::string& option, std::string_view text);

/// The name for a checked template, without an ending. A value is cut to 60 bytes and the name to
/// 180, never within a character. A field without a value takes the separator after it (one of
/// "_- ") with it, or the one before it at the end. Characters that Windows refuses in file names
/// become "-", and names that it reserves, such as CON, get a "_" in front.
std::string nameFromTemplate(std::string_view text, const NameValues& values);

/// `name`, or the first of `name_2`, `name_3` and so on, that is not used.
std::string unusedName(const std::string& name,
                       const std::function<bool(const std::string&)>& isUsed);

/// The same for names that are used if one of the files with these endings exists in
/// the directory.
std::string unusedName(const std::filesystem::path& directory, const std::string& name,
                       std::initializer_list<std::string_view> endings);

}  // namespace orvane::host
