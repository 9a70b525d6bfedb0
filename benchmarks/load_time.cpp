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

bool run(const std::string& library, const std::string& empty) {
  const auto times = benchmarks::medianTimes(
      rounds, {[&] { loadAndUnload(library); }, [&] { loadAndUnload(empty); }});
  std::printf("  loading and unloading: %.0f us, an empty library %.0f us, ratio %.2f\n",
              times[0] / 1e3, times[1] / 1e3, times[0] / times[1]);
  return true;
}

}  // namespace
}  // namespace orvane

int main(int count, char** arguments) {
  return orvane::benchmarks::runBenchmark("load_time LIBRARY_FILE EMPTY_LIBRARY_FILE", count == 3,
                                          [&] { return orvane::run(arguments[1], arguments[2]); });
}
