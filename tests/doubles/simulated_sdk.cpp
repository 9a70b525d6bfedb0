// Controls a simulated SDK from a test.
#include "doubles/simulated_sdk.hpp"

namespace orvane::testing {

SimulatedSdk::SimulatedSdk(const std::filesystem::path& file) : module(file) {
  reset();
  stop_clock(1);
  log_enable(1);
}

std::string SimulatedSdk::takeLog() const {
  std::string calls = log();
  log_clear();
  return calls;
}

SimInvariants SimulatedSdk::invariants() const {
  SimInvariants now{};
  read_invariants(&now);
  return now;
}

}  // namespace orvane::testing
