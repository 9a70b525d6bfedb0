// A fuzzer of one check: ORVANE_FUZZED_CHECK names a function of checks.hpp.
#include <cstdio>
#include <cstdlib>

#include "checks.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto violations = orvane::fuzz::ORVANE_FUZZED_CHECK({data, size});
  for (const std::string& rule : violations) {
    std::fprintf(stderr, "broken: %s\n", rule.c_str());
  }
  if (!violations.empty()) {
    std::abort();
  }
  return 0;
}
