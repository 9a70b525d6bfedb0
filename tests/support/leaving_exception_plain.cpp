// The simulated SDKs throw as this compiler does, so that its own handlers catch.
#include "support/leaving_exception.hpp"

namespace orvane::testing {

LeavingException leavingException(const std::function<void()>& body) {
  try {
    body();
    return {};
  } catch (int number) {
    return {"int " + std::to_string(number), 0, {}};
  } catch (...) {
    return {"object", 0, {}};
  }
}

}  // namespace orvane::testing
