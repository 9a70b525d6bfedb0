// Raising a failure, out of line: what builds an exception stays out of the functions that a frame
// passes through.
#include "api/failure.hpp"

#include <stdexcept>

namespace orvane {

void throwFailure(const char* message) {
  throw std::runtime_error(message);
}

}  // namespace orvane
