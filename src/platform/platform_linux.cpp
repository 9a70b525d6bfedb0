// The platform layer for Linux: dlopen and dlsym; paths and display names are bytes.
#include "platform/platform.hpp"

#include <dlfcn.h>

#include "platform/path_join.hpp"

namespace orvane::platform {

NativeString libraryPath(std::string_view directory, std::string_view baseName) {
  return joinPosixPath(directory, "lib" + std::string(baseName) + ".so");
}

Module loadLibrary(const NativeString& path) noexcept {
  // RTLD_NOW: a library with an unresolvable symbol fails here, as on Windows, not at a later call.
  return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}

FunctionAddress findFunction(Module library, const char* name) noexcept {
  return reinterpret_cast<FunctionAddress>(dlsym(library, name));
}

std::string utf8FromDisplayName(const NativeChar* text) {
  return text;
}

}  // namespace orvane::platform
