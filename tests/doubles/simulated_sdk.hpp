// Controls a simulated SDK from a test.
#pragma once

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "simulator_control.h"
#include "support/shared_library.hpp"

namespace orvane::testing {

/// One simulated SDK. The test loads it before the library under test does, so both share one
/// instance. Starts reset, with its clock stopped and its log enabled.
class SimulatedSdk {
 public:
  explicit SimulatedSdk(const std::filesystem::path& file) : module(file) {
    reset();
    stop_clock(1);
    log_enable(1);
  }

  /// The calls since the last takeLog(), one per line; empties the log.
  std::string takeLog() const {
    std::string calls = log();
    log_clear();
    return calls;
  }

  /// The calls of this function since the last takeLog(); empties the log.
  std::string takeCallsOf(const std::string& function) const {
    std::istringstream calls(takeLog());
    std::string found;
    for (std::string line; std::getline(calls, line);) {
      found += line.starts_with(function + "(") ? line + "\n" : "";
    }
    return found;
  }

  /// The open devices and streams, and the violations so far.
  SimInvariants invariants() const {
    SimInvariants now{};
    read_invariants(&now);
    return now;
  }

  /// Replaces the cameras of the SDK by these.
  void setCameras(const std::vector<SimCamera>& cameras) const {
    set_cameras(cameras.data(), static_cast<std::int32_t>(cameras.size()));
  }

  /// The call does nothing and returns this result: from the nth call on, `times` times (-1:
  /// always).
  void forceResult(const char* function, std::int64_t result, int nth = 1, int times = -1) const {
    force_result(function, nth, times, result);
  }

  /// The call throws. `kind` is SIM_THROW_STANDARD or another SIM_THROW_ constant.
  void throwFrom(const char* function, int kind, const char* text, int nth = 1,
                 int times = -1) const {
    throw_from(function, nth, times, kind, text);
  }

  /// The call runs, but reports this value in the named output.
  void forceOutput(const char* function, const char* output, double value, int nth = 1,
                   int times = -1) const {
    force_output(function, output, nth, times, value);
  }

  SharedLibrary module;
  decltype(::sim_reset)* reset = found("sim_reset");
  decltype(::sim_set_cameras)* set_cameras = found("sim_set_cameras");
  decltype(::sim_camera_by_name)* camera_by_name = found("sim_camera_by_name");
  decltype(::sim_cabinet)* cabinet = found("sim_cabinet");
  decltype(::sim_set_plugged)* set_plugged = found("sim_set_plugged");
  decltype(::sim_force_result)* force_result = found("sim_force_result");
  decltype(::sim_force_output)* force_output = found("sim_force_output");
  decltype(::sim_throw)* throw_from = found("sim_throw");
  decltype(::sim_clear_faults)* clear_faults = found("sim_clear_faults");
  decltype(::sim_set_seed)* set_seed = found("sim_set_seed");
  decltype(::sim_play_recording)* play_recording = found("sim_play_recording");
  decltype(::sim_stop_clock)* stop_clock = found("sim_stop_clock");
  decltype(::sim_advance_clock)* advance_clock = found("sim_advance_clock");
  decltype(::sim_render_frame)* render_frame = found("sim_render_frame");
  decltype(::sim_log_enable)* log_enable = found("sim_log_enable");
  decltype(::sim_log)* log = found("sim_log");
  decltype(::sim_log_clear)* log_clear = found("sim_log_clear");
  decltype(::sim_invariants)* read_invariants = found("sim_invariants");
  decltype(::sim_command)* command = found("sim_command");

 private:
  // A function of the SDK. It converts to the type of the pointer that it initialises.
  struct Found {
    template <class Function>
    operator Function*() const {
      return module.function<Function>(name);
    }
    const SharedLibrary& module;
    const char* name;
  };
  Found found(const char* name) const { return {module, name}; }
};

}  // namespace orvane::testing
