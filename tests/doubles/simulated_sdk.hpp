// A simulated SDK's control functions, and how a test uses them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "simulator_control.h"
#include "support/shared_library.hpp"

namespace orvane::testing {

/// One simulated SDK, loaded into this process before the library under test loads it: both then
/// share it. Starts reset, with its clock stopped and its log on.
class SimulatedSdk {
 public:
  explicit SimulatedSdk(const std::filesystem::path& file);

  /// The calls since the last look, a line each; empties the log.
  std::string takeLog() const;

  /// What is open and what went wrong.
  SimInvariants invariants() const;

  /// Replaces the cameras by these.
  void setCameras(const std::vector<SimCamera>& cameras) const {
    set_cameras(cameras.data(), static_cast<std::int32_t>(cameras.size()));
  }

  /// The call returns this and does nothing: the nth call from now, and `times` in all (-1: for
  /// ever).
  void forceResult(const char* function, std::int64_t result, int nth = 1, int times = -1) const {
    force_result(function, nth, times, result);
  }

  /// The call throws: one of SIM_THROW_STANDARD and its like.
  void throwFrom(const char* function, int kind, const char* text, int nth = 1,
                 int times = -1) const {
    throw_from(function, nth, times, kind, text);
  }

  /// The call is carried out but reports this value.
  void forceOutput(const char* function, const char* output, double value, int nth = 1,
                   int times = -1) const {
    force_output(function, output, nth, times, value);
  }

  SharedLibrary module;
  decltype(::sim_reset)* reset;
  decltype(::sim_set_cameras)* set_cameras;
  decltype(::sim_get_camera)* get_camera;
  decltype(::sim_set_plugged)* set_plugged;
  decltype(::sim_force_result)* force_result;
  decltype(::sim_force_output)* force_output;
  decltype(::sim_throw)* throw_from;
  decltype(::sim_clear_faults)* clear_faults;
  decltype(::sim_set_seed)* set_seed;
  decltype(::sim_play_recording)* play_recording;
  decltype(::sim_stop_clock)* stop_clock;
  decltype(::sim_advance_clock)* advance_clock;
  decltype(::sim_render_frame)* render_frame;
  decltype(::sim_log_enable)* log_enable;
  decltype(::sim_log)* log;
  decltype(::sim_log_clear)* log_clear;
  decltype(::sim_invariants)* read_invariants;
  decltype(::sim_command)* command;
};

}  // namespace orvane::testing
