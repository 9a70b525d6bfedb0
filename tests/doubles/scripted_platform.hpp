// A platform layer whose libraries are tables in the test: what loads, what is missing from it, and
// what was asked for can all be set and seen.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/platform.hpp"

namespace orvane::scripted {

struct Library {
  std::map<std::string, platform::FunctionAddress> functions;

  /// Adds a function, whatever its type.
  template <class Function>
  void add(const std::string& name, Function* function) {
    functions[name] = reinterpret_cast<platform::FunctionAddress>(function);
  }
};

struct Platform {
  std::map<std::string, Library> libraries;  ///< those that load, by "directory/base name"
  std::vector<std::string> loads;            ///< every attempt to load, as above
  std::vector<std::string> lookups;          ///< every look-up of a function, by name
};

/// The one instance, for the test to fill and to read.
Platform& platform();

}  // namespace orvane::scripted
