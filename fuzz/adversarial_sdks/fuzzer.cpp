// The fuzzer of the library against adversarial SDKs.
#include <cstdio>
#include <cstdlib>

#include "adversarial_sdks/session.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto violations = orvane::fuzz::runSession({data, size});
  for (const std::string& rule : violations) {
    std::fprintf(stderr, "broken: %s\n", rule.c_str());
  }
  if (!violations.empty()) {
    std::abort();
  }
  return 0;
}
