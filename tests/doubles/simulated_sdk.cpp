// Controls a simulated SDK from a test.
#include "doubles/simulated_sdk.hpp"

namespace orvane::testing {

SimulatedSdk::SimulatedSdk(const std::filesystem::path& file)
    : module(file),
      reset(module.function<decltype(::sim_reset)>("sim_reset")),
      set_cameras(module.function<decltype(::sim_set_cameras)>("sim_set_cameras")),
      get_camera(module.function<decltype(::sim_get_camera)>("sim_get_camera")),
      set_plugged(module.function<decltype(::sim_set_plugged)>("sim_set_plugged")),
      force_result(module.function<decltype(::sim_force_result)>("sim_force_result")),
      force_output(module.function<decltype(::sim_force_output)>("sim_force_output")),
      throw_from(module.function<decltype(::sim_throw)>("sim_throw")),
      clear_faults(module.function<decltype(::sim_clear_faults)>("sim_clear_faults")),
      set_seed(module.function<decltype(::sim_set_seed)>("sim_set_seed")),
      play_recording(module.function<decltype(::sim_play_recording)>("sim_play_recording")),
      stop_clock(module.function<decltype(::sim_stop_clock)>("sim_stop_clock")),
      advance_clock(module.function<decltype(::sim_advance_clock)>("sim_advance_clock")),
      render_frame(module.function<decltype(::sim_render_frame)>("sim_render_frame")),
      log_enable(module.function<decltype(::sim_log_enable)>("sim_log_enable")),
      log(module.function<decltype(::sim_log)>("sim_log")),
      log_clear(module.function<decltype(::sim_log_clear)>("sim_log_clear")),
      read_invariants(module.function<decltype(::sim_invariants)>("sim_invariants")),
      command(module.function<decltype(::sim_command)>("sim_command")) {
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
