// A shared library whose functions are found by name, as the library itself finds its SDKs'.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "platform/platform.hpp"

namespace orvane::benchmarks {

/// With drive and all: Windows searches a library's directory only when its path is full.
inline std::filesystem::path fullPath(const std::string& path) {
  return std::filesystem::absolute(path).make_preferred();
}

/// Stays loaded.
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
