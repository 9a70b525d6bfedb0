# Checks the direction of the includes in src/, hosts/ and simulators/: a file includes only files of
# lower floors, or of its own folder and floor, and there are no include cycles. A floor is a list of
# folders, and of single files that are on another floor than their folder. Prints the includes
# between folders.
#   SOURCE_DIR   the source tree
cmake_minimum_required(VERSION 3.25)

# The floors of each tree, lowest first: a line is a floor with the patterns of its files. The
# pattern of a file takes precedence over that of its folder; * stands for any file of one folder.
set(src_floors
  "platform/* windows_dll/*"
  "catalogue/*"
  "capture/*.hpp"
  "vendors/*.hpp"
  "api/state.hpp"
  "api/failure.hpp"
  "vendors/sdk_function.hpp"
  "vendors/sdk/*"
  "vendors/*.cpp capture/*.cpp catalogue/scan.cpp api/failure.cpp"
  "api/exports.cpp")
set(hosts_floors
  "system/*"
  "imaging/*"
  "formats/*"
  "session/* sdk_check/*"
  "oc_capture/* live_view/*")
set(simulators_floors
  "simulator_control.h"
  "core/*"
  "*")

# Allowed includes from other trees: the including files, and the file that they include.
set(src_others
  "api/exports.cpp orvane_desktop_camera.h")
set(hosts_others
  "sdk_check/sdk_functions.cpp catalogue/camera_info.hpp"
  "sdk_check/sdk_functions.cpp vendors/sdk/*_sdk.hpp"
  "session/* orvane_desktop_camera.h"
  "session/* orvane_desktop_camera.hpp"
  "oc_capture/* orvane_desktop_camera.h"
  "oc_capture/* orvane_desktop_camera.hpp"
  "live_view/* orvane_desktop_camera.h"
  "live_view/* orvane_desktop_camera.hpp")
set(simulators_others
  "* vendors/sdk/*_sdk.hpp"
  "core/* formats/ser_layout.hpp")

function(matches file pattern result)
  string(REPLACE "." "\\." regex "${pattern}")
  string(REPLACE "*" "[^/]*" regex "${regex}")
  if("${file}" MATCHES "^${regex}$")
    set(${result} TRUE PARENT_SCOPE)
  else()
    set(${result} FALSE PARENT_SCOPE)
  endif()
endfunction()

# Sets `level` and `pattern`, the longest that matches. Both are empty for a file without a floor.
function(find_floor tree file)
  set(best "")
  set(best_level "")
  set(at 0)
  foreach(floor IN LISTS ${tree}_floors)
    separate_arguments(patterns UNIX_COMMAND "${floor}")
    foreach(one IN LISTS patterns)
      matches("${file}" "${one}" fits)
      string(LENGTH "${one}" length)
      string(LENGTH "${best}" best_length)
      if(fits AND length GREATER best_length)
        set(best "${one}")
        set(best_level ${at})
      endif()
    endforeach()
    math(EXPR at "${at} + 1")
  endforeach()
  set(level "${best_level}" PARENT_SCOPE)
  set(pattern "${best}" PARENT_SCOPE)
endfunction()

function(is_allowed_elsewhere tree source target result)
  set(${result} FALSE PARENT_SCOPE)
  foreach(row IN LISTS ${tree}_others)
    separate_arguments(pair UNIX_COMMAND "${row}")
    list(GET pair 0 from)
    list(GET pair 1 to)
    matches("${source}" "${from}" from_fits)
    matches("${target}" "${to}" to_fits)
    if(from_fits AND to_fits)
      set(${result} TRUE PARENT_SCOPE)
    endif()
  endforeach()
endfunction()

set(arrows)
foreach(tree IN ITEMS src hosts simulators)
  set(root ${SOURCE_DIR}/${tree})
  file(GLOB_RECURSE sources RELATIVE ${root} ${root}/*.hpp ${root}/*.cpp ${root}/*.h)
  if(NOT sources)
    message(FATAL_ERROR "no sources in ${root}")
  endif()
  foreach(source IN LISTS sources)
    find_floor(${tree} ${source})
    set("level_${source}" "${level}")
    set("pattern_${source}" "${pattern}")
    if(level STREQUAL "")
      message(SEND_ERROR "${tree}/${source} has no floor")
    endif()
  endforeach()
  foreach(source IN LISTS sources)
    get_filename_component(folder ${source} DIRECTORY)
    set("includes_${source}" "")
    file(STRINGS ${root}/${source} lines REGEX "^ *# *include +\"")
    foreach(line IN LISTS lines)
      string(REGEX REPLACE ".*\"(.*)\".*" "\\1" target "${line}")
      if(NOT target IN_LIST sources)
        is_allowed_elsewhere(${tree} ${source} ${target} is_allowed)
        if(NOT is_allowed)
          message(SEND_ERROR "${tree}/${source} includes ${target}, a file of another tree")
        endif()
        continue()
      endif()
      list(APPEND "includes_${source}" ${target})
      if(NOT "${level_${target}}" LESS "${level_${source}}" AND
         NOT "${pattern_${target}}" STREQUAL "${pattern_${source}}")
        message(SEND_ERROR "${tree}/${source} includes ${target}, which does not stand below it")
      endif()
      get_filename_component(target_folder ${target} DIRECTORY)
      if(NOT target_folder STREQUAL folder)
        list(APPEND arrows "${tree}/${folder} -> ${tree}/${target_folder}")
      endif()
    endforeach()
  endforeach()

  # Repeatedly removes the files that include no remaining file. If files remain, they form a cycle.
  set(left ${sources})
  while(left)
    set(next)
    foreach(source IN LISTS left)
      foreach(target IN LISTS "includes_${source}")
        if(target IN_LIST left)
          list(APPEND next ${source})
          break()
        endif()
      endforeach()
    endforeach()
    if(next STREQUAL left)
      message(SEND_ERROR "${tree}: files include one another in a circle: ${left}")
      break()
    endif()
    set(left ${next})
  endwhile()
endforeach()

list(SORT arrows)
list(LENGTH arrows count)
message(STATUS "${count} includes point down, between these folders:")
set(last "")
foreach(arrow IN LISTS arrows)
  if(NOT arrow STREQUAL last)
    message(STATUS "${arrow}")
  endif()
  set(last "${arrow}")
endforeach()
