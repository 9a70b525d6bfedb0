# Writes the licence and the notices into the C++ source of licenseTexts():
#
#   cmake -DLICENSE=FILE -DNOTICES=FILE -DSOURCE=license_texts.cpp -P license_texts.cmake

file(READ "${LICENSE}" license)
file(READ "${NOTICES}" notices)
set(text "${license}\n${notices}")
# A literal for each line: compilers limit the length of one.
string(REPLACE "\\" "\\\\" text "${text}")
string(REPLACE "\"" "\\\"" text "${text}")
string(REGEX REPLACE "\n$" "" text "${text}")
string(REPLACE "\n" "\",\n    \"" text "${text}")
file(WRITE "${SOURCE}" "// Made by license_texts.cmake.
#include \"session/license_texts.hpp\"

#include <string_view>

namespace orvane::host {

namespace {

constexpr std::string_view licenseLines[] = {
    \"${text}\",
};

}  // namespace

std::string licenseTexts() {
  std::string text;
  for (const std::string_view line : licenseLines) {
    text.append(text.empty() ? \"\" : \"\\n\").append(line);
  }
  return text;
}

}  // namespace orvane::host
")
