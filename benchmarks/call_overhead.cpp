// The cost of the library's own part of oc_read, oc_apply and oc_temperature. The SDKs' functions
// return at once. The library is compared with the floor: the same look-ups by name and the same
// calls, and nothing else.
//
//     call_overhead LIBRARY_FILE INSTANT_SDK_DIRECTORY
//
// Both contenders run in one process in random order, in many short rounds. The result is the ratio
// of their medians. Prints a row for each call: SDK, call, nanoseconds of the library, nanoseconds
// of the floor, ratio. call_overhead.py runs it several times.
#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string>

#include "floor.hpp"
#include "interleaved.hpp"
#include "orvane_desktop_camera.h"
#include "support/shared_library.hpp"

namespace orvane {
namespace {

constexpr int rounds = 101;
constexpr int callsInRound = 2000;

std::uint8_t frame[64 * 48];
int device[1];  // used as every handle: the instant SDKs ignore handles

struct Floor {
  const char* baseName;
  std::function<void(platform::Module)> read, apply, temperature;
};

// In scan order.
const Floor floors[] = {
    {
        "ASICamera2",
        [](platform::Module sdk) {
          FLOOR_CALL(sdk, ASIGetVideoData)
          (0, frame, sizeof frame, 0);
        },
        [](platform::Module sdk) {
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
        [](platform::Module sdk) {
          long value = 0;
          int isAuto = 0;
          FLOOR_CALL(sdk, ASIGetControlValue)(0, ASI_TEMPERATURE, &value, &isAuto);
        },
    },
    {
        "PlayerOneCamera",
        [](platform::Module sdk) {
          int isReady = 0;
          FLOOR_CALL(sdk, POAImageReady)(0, &isReady);
          FLOOR_CALL(sdk, POAGetImageData)(0, frame, sizeof frame, 0);
        },
        [](platform::Module sdk) {
          POAConfigValue value{.floatValue = 0.0};
          for (const int id : {POA_EXPOSURE, POA_GAIN, POA_OFFSET}) {
            value.intValue = 1;
            FLOOR_CALL(sdk, POASetConfig)(0, id, value, 0);
          }
        },
        [](platform::Module sdk) {
          POAConfigValue value{.floatValue = 0.0};
          int isAuto = 0;
          FLOOR_CALL(sdk, POAGetConfig)(0, POA_TEMPERATURE, &value, &isAuto);
        },
    },
    {
        "qhyccd",
        [](platform::Module sdk) {
          std::uint32_t width = 0;
          std::uint32_t height = 0;
          std::uint32_t bits = 0;
          std::uint32_t channels = 0;
          FLOOR_CALL(sdk, GetQHYCCDLiveFrame)(device, &width, &height, &bits, &channels, frame);
        },
        [](platform::Module sdk) {
          FLOOR_CALL(sdk, SetQHYCCDParam)(device, CONTROL_EXPOSURE, 1000);
          FLOOR_CALL(sdk, SetQHYCCDParam)(device, CONTROL_GAIN, 1);
          if (FLOOR_CALL(sdk, IsQHYCCDControlAvailable)(device, CONTROL_OFFSET) == QHYCCD_SUCCESS) {
            FLOOR_CALL(sdk, SetQHYCCDParam)(device, CONTROL_OFFSET, 1);
          }
        },
        [](platform::Module sdk) {
          static_cast<void>(FLOOR_CALL(sdk, GetQHYCCDParam)(device, CONTROL_CURTEMP));
        },
    },
    {
        "toupcam",
        [](platform::Module sdk) {
          unsigned width = 0;
          unsigned height = 0;
          FLOOR_CALL(sdk, Toupcam_PullImageWithRowPitch)(device, frame, 8, -1, &width, &height);
        },
        [](platform::Module sdk) {
          FLOOR_CALL(sdk, Toupcam_put_AutoExpoEnable)(device, 0);
          FLOOR_CALL(sdk, Toupcam_put_ExpoTime)(device, 1000);
          FLOOR_CALL(sdk, Toupcam_put_ExpoAGain)(device, 1);
          FLOOR_CALL(sdk, Toupcam_put_Option)(device, TOUPCAM_OPTION_BLACKLEVEL, 1);
        },
        [](platform::Module sdk) {
          short tenths = 0;
          FLOOR_CALL(sdk, Toupcam_get_Temperature)(device, &tenths);
        },
    },
};

template <class Body>
std::function<void()> repeated(Body body) {
  return [body] {
    for (int i = 0; i < callsInRound; ++i) {
      body();
    }
  };
}

// Runs both contenders and prints their row.
template <class Ours, class Other>
void compare(const char* family, const char* call, Ours ours, Other floor) {
  const auto times = benchmarks::medianTimes(rounds, {repeated(ours), repeated(floor)});
  std::printf("%s %s %.2f %.2f %.4f\n", family, call, times[0] / callsInRound,
              times[1] / callsInRound, times[0] / times[1]);
}

bool run(const std::string& libraryFile, const std::string& sdkDirectory) {
  const testing::SharedLibrary library(benchmarks::fullPath(libraryFile));
  const auto open = library.function<decltype(::oc_open)>("oc_open");
  const auto read = library.function<decltype(::oc_read)>("oc_read");
  const auto apply = library.function<decltype(::oc_apply)>("oc_apply");
  const auto temperature = library.function<decltype(::oc_temperature)>("oc_temperature");
  const auto error = library.function<decltype(::oc_error)>("oc_error");

  library.function<decltype(::oc_library_dir)>("oc_library_dir")(sdkDirectory.c_str());
  if (library.function<decltype(::oc_scan)>("oc_scan")() != 4) {
    throw std::runtime_error("the scan did not find four cameras: " + std::string(error()));
  }
  int camera = 0;
  for (const Floor& floor : floors) {
    const char* const baseName = floor.baseName;
    if (open(camera++, 64, 48, 1, 0, 1000, 1, 1) != 1 ||
        read(frame, sizeof frame, 0) != sizeof frame) {
      throw std::runtime_error(std::string(baseName) + ": " + error());
    }
    // The library has loaded it already.
    const platform::Module sdk =
        platform::loadLibrary(platform::libraryPath(sdkDirectory, baseName));
    compare(
        baseName, "oc_read", [read] { read(frame, sizeof frame, 0); }, [&] { floor.read(sdk); });
    compare(
        baseName, "oc_apply", [apply] { apply(1000, 1, 1); }, [&] { floor.apply(sdk); });
    compare(
        baseName, "oc_temperature", [temperature] { temperature(); },
        [&] { floor.temperature(sdk); });
  }
  return true;
}

}  // namespace
}  // namespace orvane

int main(int count, char** arguments) {
  return orvane::benchmarks::runBenchmark(
      "call_overhead LIBRARY_FILE INSTANT_SDK_DIRECTORY", count == 3, [&] {
        return orvane::run(arguments[1], orvane::benchmarks::fullPath(arguments[2]).string());
      });
}
