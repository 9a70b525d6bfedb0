// The built library, loaded into this process.
#include "support/library_under_test.hpp"

namespace orvane::testing {

LibraryUnderTest::LibraryUnderTest()
    : module(ORVANE_LIBRARY_FILE),
      library_dir(module.function<decltype(::oc_library_dir)>("oc_library_dir")),
      scan(module.function<decltype(::oc_scan)>("oc_scan")),
      libraries(module.function<decltype(::oc_libraries)>("oc_libraries")),
      info(module.function<decltype(::oc_info)>("oc_info")),
      open(module.function<decltype(::oc_open)>("oc_open")),
      width(module.function<decltype(::oc_width)>("oc_width")),
      height(module.function<decltype(::oc_height)>("oc_height")),
      buffer_size(module.function<decltype(::oc_buffer_size)>("oc_buffer_size")),
      read(module.function<decltype(::oc_read)>("oc_read")),
      apply(module.function<decltype(::oc_apply)>("oc_apply")),
      temperature(module.function<decltype(::oc_temperature)>("oc_temperature")),
      close(module.function<decltype(::oc_close)>("oc_close")),
      error(module.function<decltype(::oc_error)>("oc_error")) {}

}  // namespace orvane::testing
