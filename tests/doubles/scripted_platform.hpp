// The platform layer of the tests. Its libraries are tables of functions, the test's own or those
// of a simulated SDK. A test sets which libraries load and which functions are missing, and reads
// the recorded loads and look-ups.
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
  std::set<std::string, std::less<>> missing;  ///< functions whose look-up fails

  /// Adds a function of any type.
  template <class Function>
  void add(const std::string& name, Function* function) {
    functions[name] = reinterpret_cast<platform::FunctionAddress>(function);
  }

  /// Adds an SDK function under the name and type that the library declares. A body of another type
  /// does not compile.
  template <Vendor vendor, void (*check)(std::int64_t, const char*), class Signature>
  void add(const SdkFunction<vendor, check, Signature>& declared,
           std::type_identity_t<Signature>* body) {
    add(declared.name(), body);
  }
};

/// One attempt to load a library, or one look-up of a function.
struct Passage {
  bool isLoad;
  std::string name;  ///< of the library as "directory/base name", or of the function
  bool isFound;
};

struct Platform {
  /// By "directory/base name", or by base name alone for a library that exists in every directory.
  std::map<std::string, Library, std::less<>> libraries;

  /// If set, called for every look-up; the look-up fails if it returns false.
  std::function<bool(const Library& library, const char* function)> admits;

  /// Called before and after the work of this layer. A test that counts the library's allocations
  /// pauses its count in between.
  void (*begins)() = [] {};
  void (*ends)() = [] {};

  std::vector<Passage> passed;  ///< all loads and look-ups so far; the test clears it

  /// The names of the successful loads, and of the successful look-ups.
  std::vector<std::string> loads() const { return namesOf(true); }
  std::vector<std::string> lookups() const { return namesOf(false); }

 private:
  std::vector<std::string> namesOf(bool loads) const;
};

/// The only instance.
Platform& platform();

}  // namespace orvane::scripted
