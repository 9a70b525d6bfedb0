// The texts of the live view.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "imaging/statistics.hpp"
#include "live_view/focus.hpp"
#include "live_view/live_session.hpp"

namespace orvane::host {

/// Stands for an unknown number.
constexpr const char* unknownText = "\u2013";

/// "20 ms", "500 \u00b5s", "1.25 s".
std::string exposureText(std::int64_t exposureUs);

/// "1280 \u00d7 960   GRBG   raw8   bin 1"; "" when nothing streams.
std::string formatText(const LiveState& state);

/// "12.5 \u00b0C".
std::string temperatureText(std::optional<double> celsius);

/// "30.1 / s", or "1 in 10.0 s" for less than one frame a second.
std::string rateText(double framesPerSecond);

/// "min 12   median 340   mean 350.2   max 4095"; of three channels "min 12   median 120 / 340 / 90
/// max 4095".
std::string histogramText(const Histogram& histogram);

/// "0.02 % saturated".
std::string saturationText(double part);

/// A half-flux diameter: "3.42 px".
std::string diameterText(std::optional<double> diameter);

/// The sharpness of a planet or the Moon: "12.3".
std::string sharpnessText(std::optional<double> sharpness);

/// "00:42   1260 frames   1.52 GB".
std::string recordingText(const RecordingProgress& recording);

/// "0 dropped   45.20 GB free   12 min left": the time until the disk is full or the limit is
/// reached, whatever comes first.
std::string recordingDetails(const RecordingProgress& recording);

/// True when frames were dropped, or the disk is full in less than a minute and before the end.
bool isAlarming(const RecordingProgress& recording);

/// How far the exposure is.
struct Countdown {
  std::string text;  ///< "Next frame in 8 s"
  double part = 0;   ///< 0 at its start, 1 at its end
};

/// The countdown of an exposure of more than two seconds; none for shorter ones.
std::optional<Countdown> countdownOf(const LiveState& state);

/// The text over an empty picture; "" if a picture is expected.
std::string emptyPictureText(const LiveState& state);

/// The status line: the notice, or that a frame is overdue.
Notice statusLine(const LiveState& state);

/// "1920 \u00d7 1080", "12 bit", "BGGR" and "cooled": the columns of the list of cameras.
using CameraDetails = std::array<std::string, 4>;
CameraDetails cameraDetails(const oc::CameraInfo& camera);

/// The position of the camera with this index; the number of cameras if there is none.
std::size_t positionOf(const std::vector<oc::CameraInfo>& cameras, int index);

}  // namespace orvane::host
