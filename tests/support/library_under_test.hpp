// The built library, loaded into this process by a host that looks its functions up by name.
#pragma once

#include "orvane_desktop_camera.h"
#include "support/shared_library.hpp"

namespace orvane::testing {

/// The thirteen functions of one loaded library.
struct LibraryUnderTest {
  LibraryUnderTest();

  SharedLibrary module;
  decltype(::oc_library_dir)* library_dir;
  decltype(::oc_scan)* scan;
  decltype(::oc_libraries)* libraries;
  decltype(::oc_info)* info;
  decltype(::oc_open)* open;
  decltype(::oc_width)* width;
  decltype(::oc_height)* height;
  decltype(::oc_buffer_size)* buffer_size;
  decltype(::oc_read)* read;
  decltype(::oc_apply)* apply;
  decltype(::oc_temperature)* temperature;
  decltype(::oc_close)* close;
  decltype(::oc_error)* error;
};

}  // namespace orvane::testing
