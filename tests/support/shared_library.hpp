// Loading a shared library from a test, the same way on both systems.
#pragma once

#include <filesystem>

namespace orvane::testing {

/// A library loaded by full path; it stays loaded until unload() is called or the process ends.
class SharedLibrary {
 public:
  /// Throws std::runtime_error where the file cannot be loaded.
  explicit SharedLibrary(const std::filesystem::path& file);

  /// The function of this name as a pointer of the given type; throws where it is missing.
  template <class Function>
  Function* function(const char* name) const {
    return reinterpret_cast<Function*>(address(name));
  }

  /// Gives back this object's hold on the library.
  void unload();

 private:
  using Address = void (*)();

  Address address(const char* name) const;

  void* module_;
};

}  // namespace orvane::testing
