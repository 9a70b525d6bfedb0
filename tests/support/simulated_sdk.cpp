// A simulated SDK's control functions, and how a test uses them.
#include "support/simulated_sdk.hpp"

namespace orvane::testing {

SimulatedSdk::SimulatedSdk(const std::filesystem::path& file)
    : library(file),
      reset(library.function<decltype(::sim_reset)>("sim_reset")),
      set_cameras(library.function<decltype(::sim_set_cameras)>("sim_set_cameras")),
      get_camera(library.function<decltype(::sim_get_camera)>("sim_get_camera")),
      set_plugged(library.function<decltype(::sim_set_plugged)>("sim_set_plugged")),
      force_result(library.function<decltype(::sim_force_result)>("sim_force_result")),
      force_output(library.function<decltype(::sim_force_output)>("sim_force_output")),
      clear_faults(library.function<decltype(::sim_clear_faults)>("sim_clear_faults")),
      set_seed(library.function<decltype(::sim_set_seed)>("sim_set_seed")),
      play_recording(library.function<decltype(::sim_play_recording)>("sim_play_recording")),
      stop_clock(library.function<decltype(::sim_stop_clock)>("sim_stop_clock")),
      advance_clock(library.function<decltype(::sim_advance_clock)>("sim_advance_clock")),
      render_frame(library.function<decltype(::sim_render_frame)>("sim_render_frame")),
      log_enable(library.function<decltype(::sim_log_enable)>("sim_log_enable")),
      log(library.function<decltype(::sim_log)>("sim_log")),
      log_clear(library.function<decltype(::sim_log_clear)>("sim_log_clear")),
      read_invariants(library.function<decltype(::sim_invariants)>("sim_invariants")),
      command(library.function<decltype(::sim_command)>("sim_command")) {
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
