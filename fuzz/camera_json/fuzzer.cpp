// The fuzzer of the JSON description of a camera.
#include <cstdio>
#include <cstdlib>

#include "camera_json/json_check.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto violations = orvane::fuzz::checkDescriptionOf({data, size});
  for (const std::string& rule : violations) {
    std::fprintf(stderr, "broken: %s\n", rule.c_str());
  }
  if (!violations.empty()) {
    std::abort();
  }
  return 0;
}
