# Holds the direction of the includes within src/: every file stands on a floor and includes only
# files of lower floors (or, in its own floor, nothing). A file that is missing here fails.
#   SOURCE_DIR   the library's sources

# From the ground up. A source file stands where it is listed, whatever its header's floor.
set(floors
  "platform/path_join.hpp|windows_dll/gcc_runtime.hpp|windows_dll/microsoft_exceptions.hpp|catalogue/camera_info.hpp|vendors/swap_red_and_blue.hpp|vendors/sdk_text.hpp|vendors/closing_afterwards.hpp"
  "platform/platform.hpp|capture/active_camera.hpp|vendors/sdk_call.hpp|windows_dll/microsoft_exceptions.cpp|capture/capture.hpp|catalogue/camera_json.hpp|catalogue/scan.hpp"
  "platform/platform_windows.cpp|platform/platform_linux.cpp|windows_dll/library_entry.cpp|windows_dll/gcc_runtime.cpp|vendors/swap_red_and_blue.cpp|catalogue/camera_json.cpp|vendors/vendor_library.hpp|vendors/vendor_family.hpp|vendors/bayer_pattern.hpp"
  "vendors/vendor_library.cpp|vendors/vendor_rows.hpp|api/state.hpp"
  "api/failure.hpp|vendors/sdk_function.hpp|vendors/vendor_table.cpp"
  "vendors/sdk/asi_sdk.hpp|vendors/sdk/playerone_sdk.hpp|vendors/sdk/qhyccd_sdk.hpp|vendors/sdk/toupcam_sdk.hpp"
  "vendors/asi.cpp|vendors/playerone.cpp|vendors/qhy.cpp|vendors/toupcam.cpp|api/failure.cpp|catalogue/scan.cpp|capture/open.cpp|capture/read.cpp|capture/close.cpp|capture/controls.cpp"
  "api/exports.cpp")

set(level 0)
foreach(floor IN LISTS floors)
  string(REPLACE "|" ";" files "${floor}")
  foreach(file IN LISTS files)
    set("level_${file}" ${level})
  endforeach()
  math(EXPR level "${level} + 1")
endforeach()

file(GLOB_RECURSE sources RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/*.hpp ${SOURCE_DIR}/*.cpp)
if(NOT sources)
  message(FATAL_ERROR "no sources in ${SOURCE_DIR}")
endif()
set(arrows 0)
foreach(source IN LISTS sources)
  if(NOT DEFINED "level_${source}")
    message(SEND_ERROR "${source} has no floor")
    continue()
  endif()
  file(STRINGS ${SOURCE_DIR}/${source} lines REGEX "^ *# *include +\"")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE ".*\"(.*)\".*" "\\1" target "${line}")
    if(target STREQUAL "orvane_desktop_camera.h")
      if(NOT source STREQUAL "api/exports.cpp")
        message(SEND_ERROR "${source} includes the public header")
      endif()
      continue()
    endif()
    if(NOT DEFINED "level_${target}")
      message(SEND_ERROR "${source} includes ${target}, which has no floor")
    elseif(NOT "${level_${target}}" LESS "${level_${source}}")
      message(SEND_ERROR "${source} includes ${target}, which does not stand below it")
    endif()
    math(EXPR arrows "${arrows} + 1")
  endforeach()
endforeach()
message(STATUS "${arrows} includes point down")
