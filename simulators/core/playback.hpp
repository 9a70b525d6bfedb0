// The sensor in front of a recording: what a frame looks like for given settings.
//
// The recording takes the place of the light, the optics and the noise, since it has all three in
// it: none is added. With the usual exposure and gain and without a black level a sample is the
// recording's own; other settings scale it.
//
// A recording that is smaller than the sensor lies at the sensor's top left corner, where the
// library's regions lie, and the rest is dark. Of a larger one the sensor sees the middle.
#pragma once

#include <cstdint>

#include "core/recording.hpp"
#include "core/sensor.hpp"

namespace orvane::sim {

// Writes a frame, as Renderer::render() does. The recording is open.
void renderRecording(Recording& recording, const FrameSettings& settings, std::int64_t frameNumber,
                     std::uint8_t* buffer, std::int64_t rowPitch);

}  // namespace orvane::sim
