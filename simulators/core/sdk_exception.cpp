// Throws exceptions in the usual way of the compiler that builds the simulator.
#include "core/sdk_exception.hpp"

#include <stdexcept>

#include "simulator_control.h"

namespace orvane::sim {
namespace {

std::int32_t alive = 0;

// Counts its live objects, including copies that a throw makes.
struct Counted {
  Counted() { ++alive; }
  Counted(const Counted&) { ++alive; }
  Counted& operator=(const Counted&) = default;
  ~Counted() { --alive; }
};

class StandardException : public std::runtime_error {
 public:
  explicit StandardException(const char* text) : std::runtime_error(""), text_(text) {}
  const char* what() const noexcept override { return text_; }

 private:
  const char* text_;
  Counted counted_;
};

struct ObjectException {
  Counted counted;
};

}  // namespace

void throwSdkException(std::int32_t kind, const char* text) {
  switch (kind) {
    case SIM_THROW_STANDARD:
      throw StandardException(text);
    case SIM_THROW_NUMBER:
      throw 7;  // NOLINT(hicpp-exception-baseclass)
    default:
      throw ObjectException{};  // NOLINT(hicpp-exception-baseclass)
  }
}

std::int32_t exceptionsAlive() {
  return alive;
}

}  // namespace orvane::sim
