// The options that choose a camera and its settings, and their meaning for the cameras that a scan
// has found.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "imaging/frame_correction.hpp"
#include "imaging/frame_layout.hpp"
#include "oc_capture/command.hpp"
#include "session/camera_catalogue.hpp"

namespace orvane::host {

/// Options that are not given keep these values. Those without a value depend on the camera.
struct CameraOptions {
  std::string sdkDirectory;
  bool showsScene = false;  ///< with settings that are not given, the recording is unchanged
  std::string camera;       ///< index or part of the name
  std::optional<int> width;
  std::optional<int> height;
  int bin = 1;
  std::optional<PixelFormat> format;
  std::int64_t exposureUs = 20'000;
  std::optional<int> gain;
  std::optional<int> offset;
  int discard = 0;             ///< frames to throw away after the camera was opened
  FrameCorrection correction;  ///< with the region
};

/// "--sdk", which is required, and "--scene", a recording that simulated cameras look at. Sets
/// `showsScene`, if it is not null, when there is one.
void addSdkOptions(CommandOptions& options, std::string& sdkDirectory, bool* showsScene = nullptr);

/// The options of addSdkOptions() and addCorrectionOptions(), "--camera" and the camera's settings.
void addCameraOptions(CommandOptions& options, CameraOptions& camera,
                      Presence presence = Presence::Required);

/// "--flip", "--swap-rb" and "--bayer".
void addCorrectionOptions(CommandOptions& options, FrameCorrection& correction);

/// When to stop taking frames, apart from Ctrl-C. Whichever comes first.
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
  std::vector<std::string> sdks = {};  ///< those that were loaded

  /// False for a value without a camera.
  bool isFound() const { return !description.json.empty(); }
};

/// The given settings, completed with the camera's own. With a region, the size is that of the
/// smallest frame that holds it. Throws UsageError with a sentence that tells what the camera
/// offers.
oc::Settings settingsFor(const CameraOptions& options, const oc::CameraInfo& camera);

/// Scans with the SDKs in this directory, as readCatalogue() does, but throws if loading one of
/// them could crash this program.
oc::Scan readCatalogueSafely(const std::string& sdkDirectory);

/// Scans for cameras, to capture from them: Ctrl-C now only sets stopRequested(). Errors of the
/// scan only go to standard error, because the camera that is needed may have been found. Throws
/// oc::Error when there is no camera at all.
oc::Scan findCameras(const std::string& sdkDirectory);

/// Scans for cameras and chooses one. Throws UsageError when no camera fits the options, when
/// several do, or when this one does not offer the settings; oc::Error when there is no camera at
/// all. With a region, frames have their whole height where they might start with the bottom row.
ChosenCamera findCamera(const CameraOptions& options);

}  // namespace orvane::host
