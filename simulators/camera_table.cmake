# Writes the lines of cameras.csv into a C++ source:
#
#   cmake -DTABLE=cameras.csv -DSOURCE=camera_table.cpp -P camera_table.cmake

file(STRINGS "${TABLE}" lines ENCODING UTF-8)
set(text "")
foreach(line IN LISTS lines)
  if(NOT line MATCHES "^(#|sdk,)")
    string(APPEND text "    \"${line}\",\n")
  endif()
endforeach()
file(WRITE "${SOURCE}" "// Made from cameras.csv by camera_table.cmake.
#include \"core/cabinet.hpp\"

namespace orvane::sim {
namespace {

constexpr std::string_view lines[] = {
${text}};

}  // namespace

constinit const std::span<const std::string_view> cabinetLines = lines;

}  // namespace orvane::sim
")
