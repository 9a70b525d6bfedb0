// The control interface: the sim_ functions that every simulated SDK exports.

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <span>
#include <string>

#include "core/cabinet.hpp"
#include "core/sdk.hpp"
#include "simulator_control.h"

using namespace orvane::sim;

extern "C" {

void sim_reset(void) {
  sdk().reset();
}

int32_t sim_set_cameras(const SimCamera* cameras, int32_t count) {
  constexpr int32_t mostCameras = 256;
  const int32_t taken = cameras == nullptr ? 0 : std::clamp(count, 0, mostCameras);
  sdk().setCameras({cameras, static_cast<std::size_t>(taken)});
  return taken;
}

int32_t sim_get_camera(int32_t index, SimCamera* camera) {
  const Camera* found = sdk().camera(index);
  if (found == nullptr || camera == nullptr) {
    return 0;
  }
  *camera = found->model;
  return 1;
}

int32_t sim_camera_by_name(const char* name, SimCamera* camera) {
  if (name == nullptr || camera == nullptr) {
    return 0;
  }
  const std::optional<SimCamera> model = modelNamed(name);
  if (model) {
    *camera = *model;
  }
  return model ? 1 : 0;
}

const char* sim_cabinet(void) {
  static const std::string text = cabinetText();
  return text.c_str();
}

void sim_set_plugged(int32_t index, int32_t plugged) {
  sdk().setPlugged(index, plugged == SIM_UNPLUGGED            ? Plug::Out
                          : plugged == SIM_UNPLUGGED_SILENTLY ? Plug::OutSilently
                                                              : Plug::In);
}

void sim_force_result(const char* function, int32_t nth, int32_t times, int64_t result) {
  sdk().faults.add(function, {nth, times}, ForcedResult{result});
}

void sim_throw(const char* function, int32_t nth, int32_t times, int32_t kind, const char* text) {
  sdk().faults.add(function, {nth, times}, ThrownFault{kind, text});
}

void sim_force_output(const char* function, const char* output, int32_t nth, int32_t times,
                      double value) {
  sdk().faults.add(function, {nth, times}, ForcedOutput{output, value});
}

void sim_clear_faults(void) {
  sdk().faults.clearForced();
}

void sim_set_seed(uint64_t seed) {
  sdk().seed = seed;
}

int32_t sim_play_recording(const char* serPath) {
  const std::string problem = sdk().playRecording(serPath);
  if (!problem.empty()) {
    static_cast<void>(std::fprintf(stderr, "%s: \"%s\" cannot be played: %s\n", maker.sdkName,
                                   serPath, problem.c_str()));
  }
  return problem.empty() ? 1 : 0;
}

void sim_stop_clock(int32_t stopped) {
  sdk().clock.stop(stopped != 0);
}

void sim_advance_clock(int64_t microseconds) {
  sdk().clock.advance(microseconds);
}

int32_t sim_render_frame(int32_t frame, uint8_t* buffer, int32_t bufferLength) {
  return sdk().renderFrame(frame, buffer, bufferLength);
}

void sim_log_enable(int32_t enabled) {
  sdk().log.enable(enabled != 0);
}

const char* sim_log(void) {
  return sdk().log.text();
}

void sim_log_clear(void) {
  sdk().log.clear();
}

void sim_invariants(SimInvariants* invariants) {
  *invariants = sdk().invariants();
}

int32_t sim_command(const char* commands) {
  return commands != nullptr && runCommands(commands) ? 1 : 0;
}

}  // extern "C"
