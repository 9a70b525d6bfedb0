// The texts of the live view.
#include "live_view/live_texts.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "system/text.hpp"

namespace orvane::host {

namespace {

// Three significant digits.
std::string threeDigits(double number) {
  return decimal(number, number < 9.995 ? 2 : number < 99.95 ? 1 : 0);
}

std::string twoDigits(std::int64_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

std::string sizeText(std::int64_t bytes) {
  const auto number = static_cast<double>(bytes);
  return number < 1e9 ? decimal(number / 1e6, 1) + " MB" : decimal(number / 1e9, 2) + " GB";
}

// Until the recording ends, since the disk is full or the limit is reached.
std::optional<double> secondsLeft(const RecordingProgress& recording) {
  if (recording.secondsToFull && recording.secondsToLimit) {
    return std::min(*recording.secondsToFull, *recording.secondsToLimit);
  }
  return recording.secondsToFull ? recording.secondsToFull : recording.secondsToLimit;
}

std::string durationLeftText(double seconds) {
  if (seconds < 100) {
    return decimal(seconds, 0) + " s";
  }
  return seconds < 6000 ? decimal(seconds / 60, 0) + " min" : decimal(seconds / 3600, 0) + " h";
}

std::string sizeText(int width, int height) {
  return std::to_string(width) + " \u00d7 " + std::to_string(height);
}

}  // namespace

std::string exposureText(std::int64_t exposureUs) {
  const auto number = static_cast<double>(exposureUs);
  if (exposureUs < 1000) {
    return decimal(number) + " \u00b5s";
  }
  return exposureUs < 1000000 ? decimal(number / 1e3) + " ms" : decimal(number / 1e6) + " s";
}

std::string formatText(const LiveState& state) {
  if (state.phase != LivePhase::Streaming) {
    return "";
  }
  const FrameLayout& layout = state.capture.layout;
  const std::string bayer = bayerName(layout.bayer);
  return sizeText(layout.width, layout.height) + "   " + (bayer.empty() ? "" : bayer + "   ") +
         formatName(layout.format) + "   bin " + std::to_string(state.capture.settings.bin);
}

std::string temperatureText(std::optional<double> celsius) {
  return celsius ? decimal(*celsius, 1) + " \u00b0C" : unknownText;
}

std::string rateText(double framesPerSecond) {
  if (framesPerSecond <= 0) {
    return unknownText;
  }
  return framesPerSecond >= 1 ? decimal(framesPerSecond, 1) + " / s"
                              : "1 in " + decimal(1 / framesPerSecond, 1) + " s";
}

std::string histogramText(const Histogram& histogram) {
  const ChannelHistogram& first = histogram.channel[0];
  if (histogram.channels == 1) {
    return "min " + std::to_string(first.smallest) + "   median " + std::to_string(first.median) +
           "   mean " + decimal(first.mean, first.mean < 100 ? 1 : 0) + "   max " +
           std::to_string(first.largest);
  }
  int smallest = first.smallest;
  int largest = first.largest;
  std::string medians;
  for (const ChannelHistogram& channel : histogram.channel) {
    smallest = std::min(smallest, channel.smallest);
    largest = std::max(largest, channel.largest);
    medians += (medians.empty() ? "" : " / ") + std::to_string(channel.median);
  }
  return "min " + std::to_string(smallest) + "   median " + medians + "   max " +
         std::to_string(largest);
}

std::string saturationText(double part) {
  const double percent = 100 * part;
  return decimal(percent, percent > 0 && percent < 9.95 ? 2 : 0) + " % saturated";
}

std::string diameterText(std::optional<double> diameter) {
  return diameter ? threeDigits(*diameter) + " px" : unknownText;
}

std::string sharpnessText(std::optional<double> sharpness) {
  return sharpness && *sharpness > 0 ? threeDigits(*sharpness) : unknownText;
}

std::string recordingText(const RecordingProgress& recording) {
  const auto seconds = static_cast<std::int64_t>(recording.seconds);
  return twoDigits(seconds / 60) + ":" + twoDigits(seconds % 60) + "   " +
         std::to_string(recording.frames) + " frames   " + sizeText(recording.bytes);
}

std::string recordingDetails(const RecordingProgress& recording) {
  std::string text = std::to_string(recording.droppedFrames) + " dropped";
  if (recording.freeBytes) {
    text += "   " + sizeText(*recording.freeBytes) + " free";
  }
  if (const auto left = secondsLeft(recording)) {
    text += "   " + durationLeftText(*left) + " left";
  }
  return text;
}

bool isAlarming(const RecordingProgress& recording) {
  constexpr double shortTime = 60;
  const double toFull = recording.secondsToFull.value_or(shortTime);
  return recording.droppedFrames > 0 ||
         (toFull < shortTime && toFull < recording.secondsToLimit.value_or(shortTime));
}

std::optional<Countdown> countdownOf(const LiveState& state) {
  constexpr std::int64_t shortestUs = 2'000'000;
  const std::int64_t exposureUs = state.capture.settings.exposureUs;
  if (state.phase != LivePhase::Streaming || exposureUs <= shortestUs) {
    return std::nullopt;
  }
  const double exposure = static_cast<double>(exposureUs) / 1e6;
  const double since = std::chrono::duration<double>(state.capture.silence).count();
  if (since >= exposure) {
    return Countdown{"Reading the frame\u2026", 1};
  }
  const auto left = static_cast<std::int64_t>(std::ceil(exposure - since));
  const std::string time =
      left < 60 ? std::to_string(left) + " s" : twoDigits(left / 60) + ":" + twoDigits(left % 60);
  return Countdown{"Next frame in " + time, since / exposure};
}

std::string emptyPictureText(const LiveState& state) {
  switch (state.phase) {
    case LivePhase::Searching:
      return "Looking for cameras\u2026";
    case LivePhase::Idle:
      return state.cameras.empty() ? "No camera" : "Press C to choose a camera";
    case LivePhase::Lost:
      return "No picture";
    case LivePhase::Streaming:
      break;
  }
  return state.capture.frames == 0 ? "Waiting for the first frame\u2026" : "";
}

Notice statusLine(const LiveState& state) {
  const oc::CaptureState& now = state.capture;
  if (state.phase == LivePhase::Streaming && state.notice.kind == NoticeKind::Information &&
      now.silence > oc::usualWait(now.settings.exposureUs) + std::chrono::seconds(1)) {
    const double seconds = std::chrono::duration<double>(now.silence).count();
    return {NoticeKind::Warning, "No frame for " + decimal(seconds, 0) +
                                     " s. If none comes, check the cable and press F5."};
  }
  return state.notice;
}

CameraDetails cameraDetails(const oc::CameraInfo& camera) {
  const std::string bayer = bayerName(camera.bayer);
  return {sizeText(camera.maxWidth, camera.maxHeight), std::to_string(camera.bitDepth) + " bit",
          camera.isColor ? bayer.empty() ? "colour" : bayer : "mono",
          camera.isCooled ? "cooled" : ""};
}

std::size_t positionOf(const std::vector<oc::CameraInfo>& cameras, int index) {
  const auto found = std::ranges::find(cameras, index, &oc::CameraInfo::index);
  return static_cast<std::size_t>(found - cameras.begin());
}

}  // namespace orvane::host
