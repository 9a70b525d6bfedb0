// A shared library whose functions are looked up by name, as the library looks up those of an SDK.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "platform/platform.hpp"

namespace orvane::benchmarks {

/// The full path. Windows searches a library's own directory only if the path is full.
inline std::filesystem::path fullPath(const std::string& path) {
  return std::filesystem::absolute(path).make_preferred();
}

/// The library stays loaded.
struct LibraryByName {
  explicit LibraryByName(const platform::NativeString& file) : module(platform::loadLibrary(file)) {
    if (module == nullptr) {
      throw std::runtime_error("cannot load " + std::string(file.begin(), file.end()));
    }
  }

  template <class Function>
  Function* find(const char* name) const {
    const platform::FunctionAddress address = platform::findFunction(module, name);
    if (address == nullptr) {
      throw std::runtime_error(std::string("no function ") + name);
    }
    return reinterpret_cast<Function*>(address);
  }

  platform::Module module;
};

}  // namespace orvane::benchmarks
