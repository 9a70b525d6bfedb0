// The built library, loaded into this process.
#include "support/library_under_test.hpp"

namespace orvane::testing {

LibraryUnderTest::LibraryUnderTest()
    : library(ORVANE_LIBRARY_FILE),
      library_dir(library.function<decltype(::oc_library_dir)>("oc_library_dir")),
      scan(library.function<decltype(::oc_scan)>("oc_scan")),
      libraries(library.function<decltype(::oc_libraries)>("oc_libraries")),
      info(library.function<decltype(::oc_info)>("oc_info")),
      open(library.function<decltype(::oc_open)>("oc_open")),
      width(library.function<decltype(::oc_width)>("oc_width")),
      height(library.function<decltype(::oc_height)>("oc_height")),
      buffer_size(library.function<decltype(::oc_buffer_size)>("oc_buffer_size")),
      read(library.function<decltype(::oc_read)>("oc_read")),
      apply(library.function<decltype(::oc_apply)>("oc_apply")),
      temperature(library.function<decltype(::oc_temperature)>("oc_temperature")),
      close(library.function<decltype(::oc_close)>("oc_close")),
      error(library.function<decltype(::oc_error)>("oc_error")) {}

}  // namespace orvane::testing
