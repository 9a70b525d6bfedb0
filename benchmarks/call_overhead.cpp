// What a call of the library costs beside the SDK's own: oc_read, oc_apply and oc_temperature with
// SDKs whose functions return at once, against the floor, which is the same look-ups by name and
// the same calls and nothing else.
//
//     call_overhead LIBRARY_FILE INSTANT_SDK_DIRECTORY [GATE]
//
// Both contenders run in one process in random order, many short rounds each; what counts is the
// ratio of their medians. Ends with status 1 when oc_read costs more than GATE times its floor.
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>

#include "interleaved.hpp"
#include "library_by_name.hpp"
#include "orvane_desktop_camera.h"
#include "sdk_signatures.hpp"

namespace orvane {
namespace {

constexpr int rounds = 301;
constexpr int callsInRound = 2000;

std::uint8_t frame[64 * 48];
int camera[1];  // stands for any handle: the instant SDKs look at none

using benchmarks::LibraryByName;

struct Floor {
  std::function<void(const LibraryByName&)> read, apply, temperature;
};

const Floor asiFloor{[](const LibraryByName& sdk) {
                       FLOOR_CALL(sdk, ASIGetVideoData)(0, frame, sizeof frame, 0);
                     },
                     [](const LibraryByName& sdk) {
                       FLOOR_CALL(sdk, ASISetControlValue)(0, ASI_EXPOSURE, 1000, 0);
                       FLOOR_CALL(sdk, ASISetControlValue)(0, ASI_GAIN, 1, 0);
                       int count = 0;
                       FLOOR_CALL(sdk, ASIGetNumOfControls)(0, &count);
                       for (int i = 0; i < count; ++i) {
                         ASI_CONTROL_CAPS caps{};
                         FLOOR_CALL(sdk, ASIGetControlCaps)(0, i, &caps);
                         if (caps.ControlType == ASI_OFFSET) {
                           FLOOR_CALL(sdk, ASISetControlValue)(0, ASI_OFFSET, 1, 0);
                         }
                       }
                     },
                     [](const LibraryByName& sdk) {
                       long value = 0;
                       int isAuto = 0;
                       FLOOR_CALL(sdk, ASIGetControlValue)(0, ASI_TEMPERATURE, &value, &isAuto);
                     }};

const Floor playerOneFloor{[](const LibraryByName& sdk) {
                             int isReady = 0;
                             FLOOR_CALL(sdk, POAImageReady)(0, &isReady);
                             FLOOR_CALL(sdk, POAGetImageData)(0, frame, sizeof frame, 0);
                           },
                           [](const LibraryByName& sdk) {
                             POAConfigValue value{.floatValue = 0.0};
                             for (const int id : {POA_EXPOSURE, POA_GAIN, POA_OFFSET}) {
                               value.intValue = 1;
                               FLOOR_CALL(sdk, POASetConfig)(0, id, value, 0);
                             }
                           },
                           [](const LibraryByName& sdk) {
                             POAConfigValue value{.floatValue = 0.0};
                             int isAuto = 0;
                             FLOOR_CALL(sdk, POAGetConfig)(0, POA_TEMPERATURE, &value, &isAuto);
                           }};

const Floor qhyFloor{
    [](const LibraryByName& sdk) {
      std::uint32_t width = 0;
      std::uint32_t height = 0;
      std::uint32_t bits = 0;
      std::uint32_t channels = 0;
      FLOOR_CALL(sdk, GetQHYCCDLiveFrame)(camera, &width, &height, &bits, &channels, frame);
    },
    [](const LibraryByName& sdk) {
      FLOOR_CALL(sdk, SetQHYCCDParam)(camera, CONTROL_EXPOSURE, 1000);
      FLOOR_CALL(sdk, SetQHYCCDParam)(camera, CONTROL_GAIN, 1);
      if (FLOOR_CALL(sdk, IsQHYCCDControlAvailable)(camera, CONTROL_OFFSET) == QHYCCD_SUCCESS) {
        FLOOR_CALL(sdk, SetQHYCCDParam)(camera, CONTROL_OFFSET, 1);
      }
    },
    [](const LibraryByName& sdk) {
      FLOOR_CALL(sdk, GetQHYCCDParam)
      (camera, CONTROL_CURTEMP);
    }};

const Floor toupTekFloor{
    [](const LibraryByName& sdk) {
      unsigned width = 0;
      unsigned height = 0;
      FLOOR_CALL(sdk, Toupcam_PullImageWithRowPitch)(camera, frame, 8, -1, &width, &height);
    },
    [](const LibraryByName& sdk) {
      FLOOR_CALL(sdk, Toupcam_put_AutoExpoEnable)(camera, 0);
      FLOOR_CALL(sdk, Toupcam_put_ExpoTime)(camera, 1000);
      FLOOR_CALL(sdk, Toupcam_put_ExpoAGain)(camera, 1);
      FLOOR_CALL(sdk, Toupcam_put_Option)(camera, TOUPCAM_OPTION_BLACKLEVEL, 1);
    },
    [](const LibraryByName& sdk) {
      short tenths = 0;
      FLOOR_CALL(sdk, Toupcam_get_Temperature)(camera, &tenths);
    }};

struct Family {
  const char* baseName;
  const Floor* floor;
};

const Family families[] = {{"ASICamera2", &asiFloor},
                           {"PlayerOneCamera", &playerOneFloor},
                           {"qhyccd", &qhyFloor},
                           {"toupcam", &toupTekFloor}};

// Runs both contenders and prints their row. Returns ours over the floor's.
double compare(const char* family, const char* call, const std::function<void()>& ours,
               const std::function<void()>& floor) {
  const benchmarks::Medians medians = benchmarks::timeSideBySide(rounds, ours, floor);
  const double ratio = medians.ours / medians.floor;
  std::printf("  %-16s %-15s %9.1f ns %9.1f ns %8.3f\n", family, call, medians.ours / callsInRound,
              medians.floor / callsInRound, ratio);
  return ratio;
}

template <class Body>
std::function<void()> repeated(Body body) {
  return [body] {
    for (int i = 0; i < callsInRound; ++i) {
      body();
    }
  };
}

bool run(const std::string& libraryFile, const std::string& sdkDirectory, double gate) {
  const LibraryByName library(benchmarks::fullPath(libraryFile).native());
  const auto open = library.find<decltype(::oc_open)>("oc_open");
  const auto read = library.find<decltype(::oc_read)>("oc_read");
  const auto apply = library.find<decltype(::oc_apply)>("oc_apply");
  const auto temperature = library.find<decltype(::oc_temperature)>("oc_temperature");
  const auto error = library.find<decltype(::oc_error)>("oc_error");

  library.find<decltype(::oc_library_dir)>("oc_library_dir")(sdkDirectory.c_str());
  if (library.find<decltype(::oc_scan)>("oc_scan")() != 4) {
    throw std::runtime_error("the scan did not find four cameras: " + std::string(error()));
  }
  bool isWithinGate = true;
  std::printf("  %-16s %-15s %12s %12s %8s\n", "SDK", "call", "library", "floor", "ratio");
  for (int i = 0; i < 4; ++i) {
    const char* const baseName = families[i].baseName;
    const Floor* const floor = families[i].floor;
    const LibraryByName sdk(platform::libraryPath(sdkDirectory, baseName));
    if (open(i, 64, 48, 1, 0, 1000, 1, 1) != 1 || read(frame, sizeof frame, 0) != sizeof frame) {
      throw std::runtime_error(std::string(baseName) + ": " + error());
    }
    const double readRatio =
        compare(baseName, "oc_read", repeated([read] { read(frame, sizeof frame, 0); }),
                repeated([&sdk, floor] { floor->read(sdk); }));
    isWithinGate = isWithinGate && readRatio <= gate;
    compare(baseName, "oc_apply", repeated([apply] { apply(1000, 1, 1); }),
            repeated([&sdk, floor] { floor->apply(sdk); }));
    compare(baseName, "oc_temperature", repeated([temperature] { temperature(); }),
            repeated([&sdk, floor] { floor->temperature(sdk); }));
  }
  return isWithinGate;
}

}  // namespace
}  // namespace orvane

int main(int count, char** arguments) {
  if (count < 3) {
    std::fprintf(stderr, "call_overhead LIBRARY_FILE INSTANT_SDK_DIRECTORY [GATE]\n");
    return 2;
  }
  try {
    const double gate = count > 3 ? std::strtod(arguments[3], nullptr) : 1.10;
    const bool isWithinGate =
        orvane::run(arguments[1], orvane::benchmarks::fullPath(arguments[2]).string(), gate);
    std::printf("  oc_read at most %.2f of the floor: %s\n", gate, isWithinGate ? "yes" : "NO");
    return isWithinGate ? 0 : 1;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "call_overhead: %s\n", failure.what());
    return 2;
  }
}
