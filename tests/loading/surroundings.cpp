// The current directory and the environment of the process, and its loaded libraries.
#include "loading/surroundings.hpp"

#include <cstdlib>

#ifdef _WIN32
#  include <windows.h>
#else
#  include <dlfcn.h>
#endif

namespace orvane::testing {

// NOLINTBEGIN(concurrency-mt-unsafe): tests have one thread when they call these
void setEnvironment(const std::string& name, const std::filesystem::path& value) {
#ifdef _WIN32
  const std::wstring wideName(name.begin(), name.end());
  SetEnvironmentVariableW(wideName.c_str(), value.empty() ? nullptr : value.c_str());
#else
  if (value.empty()) {
    unsetenv(name.c_str());
  } else {
    setenv(name.c_str(), value.c_str(), 1);
  }
#endif
}

void prependToSearchPaths(const std::filesystem::path& directory) {
  for (const char* name : {"PATH", "LD_LIBRARY_PATH"}) {
#ifdef _WIN32
    const char separator = ';';
#else
    const char separator = ':';
#endif
    const char* const before = std::getenv(name);
    setEnvironment(name, directory.string() + separator + (before != nullptr ? before : ""));
  }
}
// NOLINTEND(concurrency-mt-unsafe)

bool isLoaded(const std::filesystem::path& library) {
#ifdef _WIN32
  return GetModuleHandleW(library.c_str()) != nullptr;
#else
  void* const held = dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (held != nullptr) {
    dlclose(held);  // only the reference that dlopen() added
  }
  return held != nullptr;
#endif
}

}  // namespace orvane::testing
