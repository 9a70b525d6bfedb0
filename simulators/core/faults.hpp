// The faults that a test has set: forced results, forced outputs, exceptions, and cameras that are
// unplugged and plugged in, each at a chosen call of a maker's function.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/sdk_exception.hpp"

namespace orvane::sim {

// The calls of a function that a fault applies to, counted from when it was added.
struct CallRange {
  std::int32_t nth = 1;    // 1 or less: the next call
  std::int32_t times = 1;  // number of calls from there on; negative: all
};

// A camera whose cable is pulled out or put in.
struct PlugChange {
  std::int32_t camera = 0;
  bool isPlugged = false;  // afterwards
};

// What a call throws.
struct ThrownFault {
  ThrownKind kind = ThrownKind::Standard;
  const char* text = nullptr;
};

class Faults {
 public:
  void forceResult(std::string_view function, CallRange range, std::int64_t result);
  void forceOutput(std::string_view function, std::string_view output, CallRange range,
                   double value);
  void throwFrom(std::string_view function, CallRange range, ThrownFault thrown);
  void plug(std::string_view function, std::int32_t nth, PlugChange change);

  // Removes the forced results, outputs and exceptions, but not the plug changes.
  void clearForced();
  void clear() { faults_.clear(); }

  // Counts a call. The functions below then return this call's faults.
  void count(std::string_view function);

  // The forced result of the counted call.
  std::optional<std::int64_t> result() const;

  // What the counted call throws.
  std::optional<ThrownFault> thrown() const;

  // The forced value of an output of the counted call.
  std::optional<double> output(std::string_view name) const;

  // Returns the plug changes that are due before the counted call, one at a time.
  std::optional<PlugChange> nextPlugChange();

 private:
  enum class Kind { Result, Output, Throw, Plug };

  struct Fault {
    Kind kind = Kind::Result;
    std::string function;
    std::string output;
    CallRange range;
    std::int64_t result = 0;
    ThrownFault thrown;
    PlugChange change;
    double value = 0;
    std::int64_t calls = 0;  // counted so far
    bool isInForce = false;
  };

  void add(Fault fault) { faults_.push_back(std::move(fault)); }

  std::vector<Fault> faults_;
};

}  // namespace orvane::sim
