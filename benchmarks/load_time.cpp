// The time that loading and unloading the library takes, compared with an empty library.
//
//     load_time LIBRARY_FILE EMPTY_LIBRARY_FILE
#include <cstdio>

#include "interleaved.hpp"
#include "support/shared_library.hpp"

namespace orvane {
namespace {

constexpr int rounds = 101;

bool run(const char* library, const char* empty) {
  const auto times =
      benchmarks::medianTimes(rounds, {[&] { testing::SharedLibrary(library).unload(); },
                                       [&] { testing::SharedLibrary(empty).unload(); }});
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
