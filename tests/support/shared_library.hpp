// Loads a shared library, with the same interface on both systems.
#pragma once

#include <filesystem>

namespace orvane::testing {

/// A library loaded by full path. It stays loaded until unload() or the end of the process.
class SharedLibrary {
 public:
  /// Throws std::runtime_error if the file cannot be loaded.
  explicit SharedLibrary(const std::filesystem::path& file);

  /// The function of this name as a pointer of the given type. Throws if it is missing.
  template <class Function>
  Function* function(const char* name) const {
    return reinterpret_cast<Function*>(address(name));
  }

  /// Releases this reference to the library.
  void unload();

 private:
  using Address = void (*)();

  Address address(const char* name) const;

  void* module_;
};

}  // namespace orvane::testing
