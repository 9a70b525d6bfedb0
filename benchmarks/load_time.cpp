// The time that loading and unloading the library takes, compared with an empty library.
//
//     load_time LIBRARY_FILE EMPTY_LIBRARY_FILE
#include <cstdio>
#include <stdexcept>
#include <string>

#ifdef _WIN32
#  include <windows.h>
#else
#  include <dlfcn.h>
#endif

#include "interleaved.hpp"

namespace orvane {
namespace {

constexpr int rounds = 101;

void loadAndUnload(const std::string& file) {
#ifdef _WIN32
  const HMODULE module = LoadLibraryA(file.c_str());
  const bool isDone = module != nullptr && FreeLibrary(module) != 0;
#else
  void* const module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  const bool isDone = module != nullptr && dlclose(module) == 0;
#endif
  if (!isDone) {
    throw std::runtime_error("cannot load " + file);
  }
}

void run(const std::string& library, const std::string& empty) {
  const benchmarks::Medians medians = benchmarks::timeSideBySide(
      rounds, [&] { loadAndUnload(library); }, [&] { loadAndUnload(empty); });
  std::printf("  loading and unloading: %.0f us, an empty library %.0f us, ratio %.2f\n",
              medians.ours / 1e3, medians.floor / 1e3, medians.ours / medians.floor);
}

}  // namespace
}  // namespace orvane

int main(int count, char** arguments) {
  if (count != 3) {
    std::fprintf(stderr, "load_time LIBRARY_FILE EMPTY_LIBRARY_FILE\n");
    return 2;
  }
  try {
    orvane::run(arguments[1], arguments[2]);
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "load_time: %s\n", failure.what());
    return 2;
  }
}
