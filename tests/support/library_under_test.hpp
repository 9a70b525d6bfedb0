// The built library, loaded into this process as a host does.
#pragma once

#include "orvane_desktop_camera_loader.h"

namespace orvane::testing {

/// The thirteen functions of the built library. It stays loaded until unload() or the end of the
/// process.
struct LibraryUnderTest : OrvaneDesktopCamera {
  /// Throws std::runtime_error if the library cannot be loaded.
  LibraryUnderTest();

  void unload() { orvane_desktop_camera_unload(this); }
};

}  // namespace orvane::testing
