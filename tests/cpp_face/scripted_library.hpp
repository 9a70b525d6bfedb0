// A library whose answers the test decides, for testing the C++ face.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "orvane_desktop_camera.hpp"

namespace orvane::testing {

/// What the scripted library answers. The functions are called on the capture thread without a
/// lock, so whatever they share with the test must be atomic.
struct Script {
  std::vector<std::string> infos;
  std::string libraries = "ASICamera2";
  std::function<int()> scan;
  std::function<int(int index, int bin)> open = [](int, int) { return 1; };
  std::function<int(std::uint8_t* buffer, int size)> read = [](std::uint8_t*, int size) {
    return size;
  };
  std::function<int(std::int64_t exposureUs, int gain, int offset)> apply = [](std::int64_t, int,
                                                                               int) { return 1; };
  std::function<double()> temperature = [] { return 20.0; };
  std::string error;

  std::atomic<int> opened{0};
  std::atomic<int> closed{0};
  std::atomic<bool> hasOverlap{false};  ///< two calls at a time
};

/// The script that scriptedLibrary()'s functions follow; fresh when a process starts.
Script& script();

/// Frames are 4 x 2 pixels of 8 bits.
oc::Library scriptedLibrary();

/// A description as the library makes it, with this name as it stands.
std::string infoText(int index, const std::string& name);

}  // namespace orvane::testing
