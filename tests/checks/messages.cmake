# Compares docs/messages.md with the sources: every message in the sources has a row, and every row has
# a message in the sources. A throw in a form that this script cannot parse is an error, so no message
# is missed.
#   SOURCE_DIR   the library's sources
#   TABLE        docs/messages.md
cmake_minimum_required(VERSION 3.25)

# ";" and brackets are special in CMake lists: replaces ";" with "@" and brackets with parentheses.
function(read_plain file result)
  file(READ ${file} text)
  if(text MATCHES "@")
    message(FATAL_ERROR "${file} contains an @, which this script cannot read")
  endif()
  string(REPLACE ";" "@" text "${text}")
  string(REPLACE "[" "(" text "${text}")
  string(REPLACE "]" ")" text "${text}")
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

# Moves the messages of one form from `text` to `found`.
function(collect pattern template)
  string(REGEX MATCHALL "${pattern}" matches "${text}")
  foreach(match IN LISTS matches)
    string(REGEX REPLACE "${pattern}" "${template}" message "${match}")
    list(APPEND found "${message}")
  endforeach()
  string(REGEX REPLACE "${pattern}" "" text "${text}")
  set(found "${found}" PARENT_SCOPE)
  set(text "${text}" PARENT_SCOPE)
endfunction()

set(found)
file(GLOB_RECURSE sources RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/*.hpp ${SOURCE_DIR}/*.cpp)
# Passes on the texts of the SDKs' exceptions only; the document says so below its tables.
list(REMOVE_ITEM sources windows_dll/microsoft_exceptions.cpp)
foreach(source IN LISTS sources)
  read_plain(${SOURCE_DIR}/${source} text)
  string(REGEX REPLACE "//[^\n]*" "" text "${text}")

  collect("throwFailure\\([ \n]*\"([^\"]*)\"\\)@" "\\1")
  collect("lastError = \"([^\"]*)\"@" "\\1")
  collect("checkAs\\([ \n]*\"([^\"]*)\"" "\\1: <code>")
  collect("check(Vendor|Toup)Result\\([^\"@]*\"([^\"]*)\"\\)" "\\2: <code>")
  collect("([A-Za-z_0-9]+)\\.check(ResultOf)?\\(" "\\1: <code>")

  # The two composed messages. Each is made in one place.
  if(source STREQUAL "vendors/vendor_library.cpp")
    collect("throw std::runtime_error\\(library.name . \": missing \" . symbolName\\)@"
      "<library>: missing <function>")
    string(REPLACE "throw std::runtime_error(label + (\": \" + std::to_string(code)))@" "" text
      "${text}")
  endif()
  # The implementation of throwFailure().
  if(source STREQUAL "api/failure.cpp")
    string(REPLACE "throw std::runtime_error(message)@" "" text "${text}")
  endif()
  # The exception that leaves oc_scan(), a rethrow, and the assignment that keeps a caught message.
  if(source STREQUAL "platform/platform_windows.cpp")
    string(REPLACE "throw std::system_error(" "" text "${text}")
  elseif(source STREQUAL "api/failure.hpp")
    string(REPLACE "state.lastError = message@" "" text "${text}")
  endif()
  string(REPLACE "throw@" "" text "${text}")

  if(text MATCHES "throw[^A-Za-z][^@]*@")
    message(SEND_ERROR "${source}: a throw whose message cannot be read: ${CMAKE_MATCH_0}")
  endif()
  if(text MATCHES "lastError \\+?= [^@]*@")
    message(SEND_ERROR "${source}: an error text that cannot be read: ${CMAKE_MATCH_0}")
  endif()
  if(NOT source MATCHES "^api/failure\\." AND text MATCHES "throwFailure\\([^@]*@")
    message(SEND_ERROR "${source}: a failure whose message cannot be read: ${CMAKE_MATCH_0}")
  endif()
  # Labels are literals, except where the checks themselves are defined.
  if(NOT source MATCHES "^vendors/(sdk_function|vendor_library)\\.hpp$" AND
     text MATCHES "(checkAs|checkVendorResult|checkToupResult)\\([^@]*@")
    message(SEND_ERROR "${source}: a label that cannot be read: ${CMAKE_MATCH_0}")
  endif()
endforeach()
list(REMOVE_DUPLICATES found)
list(SORT found)

read_plain(${TABLE} text)
set(rows)
string(REGEX MATCHALL "\n\\| `[^`]+`" matches "${text}")
foreach(match IN LISTS matches)
  string(REGEX REPLACE "\n\\| `([^`]+)`" "\\1" row "${match}")
  if(row IN_LIST rows)
    message(SEND_ERROR "listed twice: ${row}")
  endif()
  list(APPEND rows "${row}")
endforeach()
list(REMOVE_ITEM rows "std::bad_alloc")  # its text comes from the C++ standard library

if(NOT found OR NOT rows)
  message(FATAL_ERROR "no messages found")
endif()
foreach(message IN LISTS found)
  if(NOT message IN_LIST rows)
    string(REPLACE "@" ";" message "${message}")
    message(SEND_ERROR "not in the table: ${message}")
  endif()
endforeach()
foreach(row IN LISTS rows)
  if(NOT row IN_LIST found)
    string(REPLACE "@" ";" row "${row}")
    message(SEND_ERROR "in the table, but not in the sources: ${row}")
  endif()
endforeach()
list(LENGTH found count)
message(STATUS "${count} messages, all of them in the table")
