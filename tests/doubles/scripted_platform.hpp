// The platform layer of the tests. Its libraries are tables of functions: a test's own, or those of
// a simulated SDK. A test sets what loads and what is missing, and sees what was asked for.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "vendors/sdk_function.hpp"

namespace orvane::scripted {

struct Library {
  bool canLoad = true;
  std::map<std::string, platform::FunctionAddress, std::less<>> functions;
  std::set<std::string, std::less<>> missing;  ///< functions that no look-up finds at present

  /// Adds a function, whatever its type.
  template <class Function>
  void add(const std::string& name, Function* function) {
    functions[name] = reinterpret_cast<platform::FunctionAddress>(function);
  }

  /// Adds an SDK function under the name and the type that the library declares for it: a body of
  /// another type does not compile.
  template <Vendor vendor, void (*check)(std::int64_t, const char*), class Signature>
  void add(const SdkFunction<vendor, check, Signature>& declared,
           std::type_identity_t<Signature>* body) {
    add(declared.name(), body);
  }
};

/// One attempt to load a library, or one look-up of a function.
struct Passage {
  bool isLoad;
  std::string name;  ///< "directory/base name", or the function's
  bool isFound;
};

struct Platform {
  /// By "directory/base name", or by base name alone for a library that lies in every directory.
  std::map<std::string, Library, std::less<>> libraries;

  /// Asked at every look-up, where it is set: false lets the look-up fail.
  std::function<bool(const Library& library, const char* function)> admits;

  /// Called around the work of this layer: a test that counts the library's allocations stops
  /// counting meanwhile.
  void (*begins)() = [] {};
  void (*ends)() = [] {};

  std::vector<Passage> passed;  ///< everything so far, for the test to clear

  /// The names of the loads, and of the look-ups, that passed.
  std::vector<std::string> loads() const { return namesOf(true); }
  std::vector<std::string> lookups() const { return namesOf(false); }

 private:
  std::vector<std::string> namesOf(bool loads) const;
};

/// The one instance, for the test to fill and to read.
Platform& platform();

}  // namespace orvane::scripted
