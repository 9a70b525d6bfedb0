// What the live view says on the screen.
#pragma once

#include <cstdint>
#include <string>

#include "imaging/statistics.hpp"
#include "live_view/focus.hpp"
#include "live_view/live_session.hpp"

namespace orvane::host {

/// A number for a place where nothing is known.
constexpr const char* unknownText = "\u2013";

/// "20 ms", "500 \u00b5s", "1.25 s".
std::string exposureText(std::int64_t exposureUs);

/// "1280 \u00d7 960   GRBG   raw8   bin 1"; "" when nothing streams.
std::string formatText(const LiveState& state);

/// Some SDKs answer an error number where they have no temperature.
std::string temperatureText(double celsius);

/// "30.1 per second", or the time between two frames for slow ones.
std::string rateText(double framesPerSecond);

/// "min 12   mean 340   max 4095".
std::string histogramText(const Histogram& histogram);

/// "0.02 % saturated".
std::string saturationText(double part);

/// The focus figure alone: "3.42 px", or the sharpness where there is no star.
std::string focusText(const Focus& focus);

/// What the focus figure is.
std::string focusCaption(const Focus& focus);

/// "00:42   1260 frames   1.52 GB".
std::string recordingText(const RecordingProgress& recording);

/// What stands over an empty picture; "" where a picture is to be expected.
std::string emptyPictureText(const LiveState& state);

/// The status line: the notice, or that a frame is overdue.
Notice statusLine(const LiveState& state);

/// "2  ZWO ASI294MC Pro" and what the camera is, for the list of cameras.
std::string cameraDetails(const CameraDescription& camera);

}  // namespace orvane::host
