// The library, with every call held against the contract.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "orvane_desktop_camera.h"
#include "torture/contract.hpp"

namespace orvane::testing {

/// The functions under test, linked or loaded.
struct Exports {
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

/// What a checked library needs to know of its surroundings.
struct Surroundings {
  /// Hands out what happened since the last time. Throws a Violation where that cannot be told.
  std::function<std::vector<Event>()> takeEvents;
  /// Called right before and right after each function; the second tells after which event an
  /// allocation failed meanwhile. Both may be empty.
  std::function<void()> enter;
  std::function<std::optional<std::size_t>()> leave;
};

/// Calls the functions one by one. After each, what it returned, what it asked of the SDKs and what
/// the library now remembers must be what the contract says; a Violation is thrown otherwise. The
/// results are handed on; where std::bad_alloc left the function, and had to, the result is empty.
class CheckedLibrary {
 public:
  /// `contract` is at the point where the library is.
  CheckedLibrary(const Exports& exports, Contract contract, Surroundings surroundings)
      : oc_(exports), surroundings_(std::move(surroundings)), contract_(std::move(contract)) {}

  void libraryDir(const char* directory);
  std::optional<int> scan();
  std::optional<std::string> info(int index);
  std::optional<int> open(const OpenArguments& arguments);
  std::optional<int> read(std::uint8_t* buffer, int bufferLength, int timeoutMs);
  std::optional<int> apply(std::int64_t exposureUs, int gain, int offset);
  std::optional<double> temperature();
  void close();

  /// What the library must remember by now, and does.
  const Contract& contract() const { return contract_; }

 private:
  struct Returned {
    int number = 0;
    double real = 0;
    const char* text = "";
  };

  template <class Run, class Demand>
  std::optional<Returned> step(const char* function, Run run, Demand demand);
  std::string remembered() const;
  std::string toBeRemembered() const;

  Exports oc_;
  Surroundings surroundings_;
  Contract contract_;
};

}  // namespace orvane::testing
