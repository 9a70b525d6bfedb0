// The sensor in front of a recording: makes a frame for given settings.
//
// The recording already contains light, optics and noise, so none is added. With the usual exposure
// and gain and without a black level, a sample has the recording's value. Other settings scale it.
//
// A recording that is smaller than the sensor fills the sensor's top left corner, where the
// library's regions begin; the rest is dark. Of a larger one the sensor sees the middle.
#pragma once

#include <cstdint>

#include "core/recording.hpp"
#include "core/sensor.hpp"

namespace orvane::sim {

// Writes a frame, as Renderer::render() does. The recording is open.
void renderRecording(Recording& recording, const FrameSettings& settings, std::int64_t frameNumber,
                     std::uint8_t* buffer, std::int64_t rowPitch);

}  // namespace orvane::sim
