// The options that choose a camera and its settings, and their meaning for the cameras that a scan
// has found.
#include "oc_capture/camera_options.hpp"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <stdexcept>

#include "formats/ser_reader.hpp"
#include "oc_capture/report.hpp"
#include "sdk_check/examination.hpp"
#include "session/camera_choice.hpp"
#include "system/argument_values.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr int smallestInt = std::numeric_limits<int>::min();
constexpr int largestInt = std::numeric_limits<int>::max();

// A value that has a name. `names` lists all names for the error's sentence.
template <class Value>
ReadValue intoNamed(std::optional<Value>& value, std::optional<Value> (*fromName)(std::string_view),
                    const char* names) {
  return [&value, fromName, names](const char* option, const std::string& text) {
    value = fromName(text);
    if (!value) {
      throw UsageError(std::string(option) + " needs " + names + ", not " + inQuotes(text) + ".");
    }
  };
}

ReadValue intoExposure(std::int64_t& microseconds) {
  return [&microseconds](const char* option, const std::string& text) {
    microseconds = parseDuration(option, text);
    if (microseconds > largestInt) {
      throw UsageError(std::string(option) + " can be 2147483647us at most.");
    }
  };
}

ReadValue intoRegion(std::optional<Region>& region) {
  return [&region](const char* option, const std::string& text) {
    region = regionFromValue(text);
    if (!region) {
      throw UsageError(std::string(option) +
                       " needs X,Y,WIDTHxHEIGHT, such as 320,240,640x480, not " + inQuotes(text) +
                       ".");
    }
  };
}

// A file that simulated cameras can show. They check it too, but a program cannot ask them.
void requireRecording(const std::filesystem::path& path) {
  try {
    const SerReader recording(path);
    if (recording.facts().frames == 0 && recording.facts().framesBehind == 0) {
      throw std::runtime_error(inQuotes(utf8FromPath(path)) + " has no whole frame.");
    }
  } catch (const std::runtime_error& error) {
    throw UsageError(error.what());
  }
}

// "--scene". It takes effect when its value is read, which is before any SDK is loaded. Real
// cameras ignore it.
void showToSimulatedCameras(const std::string& file) {
  const std::filesystem::path path = pathFromUtf8(file);
  const std::string full = utf8FromPath(std::filesystem::absolute(path));
  // These characters separate commands.
  if (full.find_first_of(";\n") != std::string::npos) {
    throw UsageError("--scene cannot take a file with a semicolon in its path: " + inQuotes(full) +
                     ".");
  }
  requireRecording(path);
  // The simulated SDKs read their commands from this variable when they are loaded.
  constexpr const char* variable = "ORVANE_SIMULATOR";
  const std::string others = environmentVariable(variable);
  setEnvironmentVariable(variable, (others.empty() ? "" : others + "; ") + "sdk *; scene " + full);
}

// Throws unless the camera offers the value.
template <class Value, class Text>
void requireListed(const oc::CameraInfo& camera, const char* what, Value wanted,
                   const std::vector<Value>& offered, Text text) {
  if (std::find(offered.begin(), offered.end(), wanted) != offered.end()) {
    return;
  }
  const std::string list = joined(offered, ", ", text);
  throw UsageError(camera.name + " has no " + what + " " + std::string(text(wanted)) +
                   "; it offers " + (list.empty() ? "none" : list) + ".");
}

int sideOf(const oc::CameraInfo& camera, const char* option, std::optional<int> wanted,
           int longest) {
  if (wanted && *wanted > longest) {
    throw UsageError(std::string(option) + " can be " + std::to_string(longest) + " at most with " +
                     camera.name + ".");
  }
  return wanted.value_or(longest);
}

// ToupTek's frames start with the bottom row on Windows. A row of a frame that is less high is then
// another row of the sensor. The library does not tell which SDK a camera belongs to.
bool mayStartAtTheBottom(const std::vector<std::string>& sdks) {
#ifdef _WIN32
  return std::ranges::find(sdks, "toupcam") != sdks.end();
#else
  static_cast<void>(sdks);
  return false;
#endif
}

// The size to open the camera with, so that its frames hold the region.
CornerSize sizeFor(const Region& region, int bin, const oc::CameraInfo& camera) {
  const int width = camera.maxWidth / bin;
  const int height = camera.maxHeight / bin;
  if (!region.isInside(width, height)) {
    throw UsageError("The region " + regionText(region) + " is not inside the frame of " +
                     camera.name + ", " + dimensionsText(width, height) + " with bin " +
                     std::to_string(bin) + ".");
  }
  return cornerHolding(region, width, height);
}

PixelFormat formatOf(const oc::CameraInfo& camera, std::optional<PixelFormat> wanted) {
  if (!wanted && camera.formats.empty()) {
    throw UsageError(camera.name + " offers no pixel format.");
  }
  const PixelFormat format = wanted ? *wanted : camera.formats.front();
  requireListed(camera, "format", format, camera.formats, formatName);
  return format;
}

int gainOf(const oc::CameraInfo& camera, std::optional<int> wanted, bool showsScene) {
  if (wanted && hasGainRange(camera) && (*wanted < camera.minGain || *wanted > camera.maxGain)) {
    throw UsageError("--gain can be " + std::to_string(camera.minGain) + " to " +
                     std::to_string(camera.maxGain) + " with " + camera.name + ".");
  }
  return wanted.value_or(showsScene ? middleGain(camera) : usualGain(camera));
}

}  // namespace

void addSdkOptions(CommandOptions& options, std::string& sdkDirectory, bool* showsScene) {
  options.add("--sdk", "DIR", "Directory with the makers' SDK libraries", intoText(sdkDirectory),
              Presence::Required);
  options.add("--scene", "FILE.ser",
              "Recording that simulated cameras look at;\nreal ones do not see it",
              [showsScene](const char*, const std::string& file) {
                showToSimulatedCameras(file);
                if (showsScene != nullptr) {
                  *showsScene = true;
                }
              });
}

void addCameraOptions(CommandOptions& options, CameraOptions& camera, Presence presence) {
  addSdkOptions(options, camera.sdkDirectory, &camera.showsScene);
  options.add("--camera", "CAMERA", "Index, or a part of the name\nthat fits one camera only",
              intoText(camera.camera), presence);
  options.add("--width", "PIXELS", "Frame width; whole sensor if not given",
              intoNumber(camera.width, 1, largestInt));
  options.add("--height", "PIXELS", "Frame height; whole sensor if not given",
              intoNumber(camera.height, 1, largestInt));
  options.add(
      "--region", "X,Y,WIDTHxHEIGHT",
      "Keep only this part of each frame, anywhere in\nit, in pixels after binning. Saves disk "
      "space,\n"
      "not readout time: the camera reads everything\nfrom its top left corner to the region",
      intoRegion(camera.correction.region));
  options.add("--bin", "N", "Binning factor; 1 if not given",
              intoNumber(camera.bin, 1, largestInt));
  options.add("--format", "FORMAT", "raw8, raw16, rgb24 or mono8;\nthe camera's first if not given",
              intoNamed(camera.format, formatFromName, "raw8, raw16, rgb24 or mono8"));
  options.add("--exposure", "TIME", "With its unit: 500us, 20ms, 1.5s;\n20ms if not given",
              intoExposure(camera.exposureUs));
  options.add(
      "--gain", "N",
      "In the maker's units; if not given, a third of\nthe camera's range, with --scene the middle",
      intoNumber(camera.gain, smallestInt, largestInt));
  options.add("--offset", "N",
              "Black level in the maker's units;\nif not given, 10, with --scene 0",
              intoNumber(camera.offset, smallestInt, largestInt));
  options.add("--discard", "N",
              "Frames to throw away before the first that counts;\n0 if not given",
              intoNumber(camera.discard, 0, largestInt));
  addCorrectionOptions(options, camera.correction);
}

void addCorrectionOptions(CommandOptions& options, FrameCorrection& correction) {
  options.addFlag("--flip", correction.flips, "Turn frames upside down");
  options.addFlag("--swap-rb", correction.swapsRedAndBlue, "Swap red and blue of rgb24 frames");
  options.add("--bayer", "PATTERN",
              "Bayer pattern of raw frames before --flip,\nif the SDK reports a wrong one:\n"
              "RGGB, GRBG, GBRG, BGGR or none",
              intoNamed(correction.bayer, bayerFromName, "RGGB, GRBG, GBRG, BGGR or none"));
}

void addLengthOptions(CommandOptions& options, CaptureLength& length, const char* framesDescription,
                      const char* secondsDescription) {
  options.add("--frames", "N", framesDescription, intoNumber(length.frames, 1, largestInt));
  options.add("--seconds", "S", secondsDescription,
              [&length](const char* option, const std::string& text) {
                length.microseconds = parseSeconds(option, text);
              });
}

oc::Settings settingsFor(const CameraOptions& options, const oc::CameraInfo& camera) {
  const std::optional<Region>& region = options.correction.region;
  if (region && (options.width || options.height)) {
    throw UsageError("--region cannot be given together with --width or --height.");
  }
  oc::Settings settings;
  settings.width = sideOf(camera, "--width", options.width, camera.maxWidth);
  settings.height = sideOf(camera, "--height", options.height, camera.maxHeight);
  settings.bin = options.bin;
  requireListed(camera, "bin", settings.bin, camera.bins,
                [](int bin) { return std::to_string(bin); });
  if (region) {
    const CornerSize size = sizeFor(*region, settings.bin, camera);
    settings.width = size.width;
    settings.height = size.height;
  }
  settings.format = formatOf(camera, options.format);
  settings.exposureUs = options.exposureUs;
  if (hasLongestExposure(camera) && settings.exposureUs > camera.maxExposureUs) {
    throw UsageError("--exposure can be " + durationText(camera.maxExposureUs) + " at most with " +
                     camera.name + ".");
  }
  settings.gain = gainOf(camera, options.gain, options.showsScene);
  settings.offset = options.offset.value_or(options.showsScene ? 0 : 10);
  // Throws now, not only after the camera was opened.
  correctedLayout({settings.width, settings.height, settings.format, BayerPattern::None},
                  options.correction);
  return settings;
}

oc::Scan readCatalogueSafely(const std::string& sdkDirectory) {
  refuseSdksThatCrashTheLoader(fullSdkDirectory(sdkDirectory));
  return readCatalogue(sdkDirectory);
}

oc::Scan findCameras(const std::string& sdkDirectory) {
  catchStopRequests();
  useFineSleep();
  oc::Scan catalogue = readCatalogueSafely(sdkDirectory);
  if (!catalogue.error.empty()) {
    reportFailure(catalogue.error);
  }
  if (catalogue.cameras.empty()) {
    throw oc::Error("No camera was found. The command \"list\" says what to check.");
  }
  return catalogue;
}

ChosenCamera findCamera(const CameraOptions& options) {
  const oc::Scan catalogue = findCameras(options.sdkDirectory);
  const oc::CameraInfo& camera = chooseCamera(catalogue.cameras, options.camera);
  ChosenCamera chosen{camera, settingsFor(options, camera), catalogue.libraries};
  if (options.correction.region && mayStartAtTheBottom(catalogue.libraries)) {
    chosen.settings.height = camera.maxHeight;
  }
  return chosen;
}

}  // namespace orvane::host
