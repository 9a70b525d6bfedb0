// The faults that a test has set: forced results, forced outputs, exceptions, calls that hang or
// crash, and cameras that are unplugged and plugged in, each at a chosen call of a maker's
// function.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orvane::sim {

// The calls of a function that a fault applies to, counted from when it was added.
struct CallRange {
  std::int32_t nth = 1;    // 1 or less: the next call
  std::int32_t times = 1;  // number of calls from there on; negative: all
};

struct ForcedResult {
  std::int64_t value;
};

struct ForcedOutput {
  std::string name;
  double value;
};

struct ThrownFault {
  std::int32_t kind;  // SIM_THROW_STANDARD and so on
  const char* text;
};

// A call that does not return.
struct Hang {};

// A call that ends the process by an access violation.
struct Crash {};

enum class Plug { In, Out, OutSilently };

// A camera that is unplugged or plugged in just before the call.
struct PlugChange {
  std::int32_t camera;
  Plug plug;  // afterwards
};

// Frames that arrive damaged, so that the SDK drops them.
struct DamagedFrames {
  std::int32_t count;
};

using Effect =
    std::variant<ForcedResult, ForcedOutput, ThrownFault, Hang, Crash, PlugChange, DamagedFrames>;

class Faults {
 public:
  void add(std::string_view function, CallRange range, Effect effect);

  // Removes all faults but the plug changes.
  void clearForced();
  void clear() { faults_.clear(); }

  // Counts a call, and returns the plug changes that are due before it. first() then returns this
  // call's faults.
  std::vector<PlugChange> count(std::string_view function);

  // The first effect of one kind that is accepted; null if there is none.
  template <class Kind, class Accept>
  const Kind* first(const Accept& isAccepted) const {
    for (const Fault& fault : faults_) {
      const Kind* effect = std::get_if<Kind>(&fault.effect);
      if (fault.isInForce && effect != nullptr && isAccepted(*effect)) {
        return effect;
      }
    }
    return nullptr;
  }
  template <class Kind>
  const Kind* first() const {
    return first<Kind>([](const Kind&) { return true; });
  }

 private:
  struct Fault {
    std::string function;
    CallRange range;
    Effect effect;
    std::int64_t calls = 0;  // counted so far
    bool isInForce = false;
  };

  std::vector<Fault> faults_;
};

}  // namespace orvane::sim
