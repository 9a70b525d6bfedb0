// The options that say which camera is used and how it is opened, and what they mean for the
// cameras that are found.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "imaging/frame_correction.hpp"
#include "imaging/frame_layout.hpp"
#include "oc_capture/command.hpp"
#include "session/camera_catalogue.hpp"

namespace orvane::host {

/// An option that is not given has the value that stands here; without a value, the camera decides.
struct CameraOptions {
  std::string sdkDirectory;
  std::string camera;  ///< index or part of the name
  std::optional<int> width;
  std::optional<int> height;
  int bin = 1;
  std::optional<PixelFormat> format;
  std::int64_t exposureUs = 20'000;
  std::optional<int> gain;
  int offset = 10;
  int discard = 0;  ///< frames to throw away after the camera was opened
  FrameCorrection correction;
};

/// "--sdk", which is required, and "--scene".
void addSdkOptions(CommandOptions& options, std::string& sdkDirectory);

/// The options of addSdkOptions() and addCorrectionOptions(), "--camera" and the camera's settings.
void addCameraOptions(CommandOptions& options, CameraOptions& camera,
                      Presence presence = Presence::Required);

/// "--flip", "--swap-rb" and "--bayer".
void addCorrectionOptions(CommandOptions& options, FrameCorrection& correction);

/// When to stop taking frames; Ctrl-C stops it, too. Only one of the two can be given.
struct CaptureLength {
  std::optional<int> frames;
  std::optional<std::int64_t> microseconds;

  bool isReached(std::int64_t framesTaken, std::chrono::steady_clock::duration elapsed) const {
    return (frames && framesTaken >= *frames) ||
           (microseconds && elapsed >= std::chrono::microseconds(*microseconds));
  }
};

/// "--frames" and "--seconds".
void addLengthOptions(CommandOptions& options, CaptureLength& length, const char* framesDescription,
                      const char* secondsDescription);

/// A camera that was found, and the settings to open it with.
struct ChosenCamera {
  oc::CameraInfo description;
  oc::Settings settings;
};

/// The settings that are asked for, completed with the camera's own. Throws UsageError with
/// a sentence that says what the camera offers.
oc::Settings settingsFor(const CameraOptions& options, const oc::CameraInfo& camera);

/// Scans for cameras to use one of them. Errors of the scan go to standard error: the camera that
/// is meant may have been found all the same. Throws oc::Error when there is no camera at all.
oc::Scan findCameras(const std::string& sdkDirectory);

/// Scans and chooses. Throws UsageError when no camera, or more than one, fits the options, or when
/// this camera cannot do what they ask, and oc::Error when there is no camera at all.
ChosenCamera findCamera(const CameraOptions& options);

}  // namespace orvane::host
