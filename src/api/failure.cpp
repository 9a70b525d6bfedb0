// throwFailure(). It is out of line so that the code that builds the exception does not become part
// of the functions on the frame path.
#include "api/failure.hpp"

#include <stdexcept>

namespace orvane {

void throwFailure(const char* message) {
  throw std::runtime_error(message);
}

}  // namespace orvane
