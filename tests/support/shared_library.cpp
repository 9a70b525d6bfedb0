// Loads a shared library, with the same interface on both systems.
#include "support/shared_library.hpp"

#include <stdexcept>
#include <string>

#ifdef _WIN32
#  include <windows.h>
#else
#  include <dlfcn.h>
#endif

namespace orvane::testing {

SharedLibrary::SharedLibrary(const std::filesystem::path& file)
    :
#ifdef _WIN32
      module_(LoadLibraryW(std::filesystem::path(file).make_preferred().c_str()))
#else
      module_(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL))
#endif
{
  if (module_ == nullptr) {
    throw std::runtime_error("cannot load " + file.string());
  }
}

SharedLibrary::Address SharedLibrary::address(const char* name) const {
#ifdef _WIN32
  const auto found = reinterpret_cast<Address>(GetProcAddress(static_cast<HMODULE>(module_), name));
#else
  const auto found = reinterpret_cast<Address>(dlsym(module_, name));
#endif
  if (found == nullptr) {
    throw std::runtime_error(std::string("no function ") + name);
  }
  return found;
}

void SharedLibrary::unload() {
#ifdef _WIN32
  FreeLibrary(static_cast<HMODULE>(module_));
#else
  dlclose(module_);
#endif
  module_ = nullptr;
}

}  // namespace orvane::testing
