// The cost of the library's own part of oc_scan, per camera, and of a call of oc_info.
//
//     scan_cost LIBRARY_FILE INSTANT_SDK_DIRECTORY [GATE_NS]
//
// The instant SDKs have 128 cameras each (ORVANE_INSTANT_CAMERAS=128). They are also linked into
// this program: the floor makes the same SDK calls directly. The difference is the library's own
// part: look-ups, descriptions, memory. The exit status is 1 if a camera costs more than GATE_NS.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "floor.hpp"
#include "interleaved.hpp"
#include "orvane_desktop_camera.h"
#include "support/shared_library.hpp"

namespace orvane {
namespace {

constexpr int rounds = 301;
constexpr int camerasPerSdk = 128;
constexpr int cameraCount = 4 * camerasPerSdk;

void scanAsi() {
  const int cameras = ASIGetNumOfConnectedCameras();
  for (int i = 0; i < cameras; ++i) {
    ASI_CAMERA_INFO info{};
    ASIGetCameraProperty(&info, i);
    ASIOpenCamera(info.CameraID);
    ASIInitCamera(info.CameraID);
    int controls = 0;
    ASIGetNumOfControls(info.CameraID, &controls);
    for (int control = 0; control < controls; ++control) {
      ASI_CONTROL_CAPS caps{};
      ASIGetControlCaps(info.CameraID, control, &caps);
    }
    ASICloseCamera(info.CameraID);
  }
}

void scanPlayerOne() {
  const int cameras = POAGetCameraCount();
  for (int i = 0; i < cameras; ++i) {
    POACameraProperties properties{};
    POAGetCameraProperties(i, &properties);
    POAOpenCamera(properties.cameraID);
    POAInitCamera(properties.cameraID);
    for (const int id : {POA_GAIN, POA_EXPOSURE}) {
      POAConfigAttributes attributes{};
      POAGetConfigAttributesByConfigID(properties.cameraID, id, &attributes);
    }
    POACloseCamera(properties.cameraID);
  }
}

void scanQhy() {
  const std::uint32_t cameras = ScanQHYCCD();
  for (std::uint32_t i = 0; i < cameras; ++i) {
    char id[257] = {};
    char model[257] = {};
    GetQHYCCDId(i, id);
    GetQHYCCDModel(id, model);
    void* const handle = OpenQHYCCD(id);
    SetQHYCCDStreamMode(handle, 1);
    InitQHYCCD(handle);
    double chip[4] = {};
    std::uint32_t image[3] = {};
    GetQHYCCDChipInfo(handle, &chip[0], &chip[1], &image[0], &image[1], &chip[2], &chip[3],
                      &image[2]);
    for (const int control :
         {CAM_COLOR, CONTROL_COOLER, CAM_16BITS, CAM_BIN2X2MODE, CAM_BIN3X3MODE, CAM_BIN4X4MODE}) {
      IsQHYCCDControlAvailable(handle, control);
    }
    for (const int control : {CONTROL_EXPOSURE, CONTROL_GAIN}) {
      GetQHYCCDParamMinMaxStep(handle, control, &chip[0], &chip[1], &chip[2]);
    }
    CloseQHYCCD(handle);
  }
}

void scanToupTek() {
  std::array<ToupcamDeviceV2, TOUPCAM_MAX> devices{};
  const unsigned cameras = Toupcam_EnumV2(devices.data());
  for (unsigned i = 0; i < cameras; ++i) {
    void* const handle = Toupcam_Open(devices[i].id);
    Toupcam_get_MaxBitDepth(handle);
    unsigned numbers[3] = {};
    Toupcam_get_RawFormat(handle, &numbers[0], &numbers[1]);
    Toupcam_get_ExpTimeRange(handle, &numbers[0], &numbers[1], &numbers[2]);
    unsigned short gains[3] = {};
    Toupcam_get_ExpoAGainRange(handle, &gains[0], &gains[1], &gains[2]);
    Toupcam_Close(handle);
  }
}

bool run(const std::string& libraryFile, const std::string& sdkDirectory, double gateNs) {
  const testing::SharedLibrary library(benchmarks::fullPath(libraryFile));
  const auto scan = library.function<decltype(::oc_scan)>("oc_scan");
  const auto info = library.function<decltype(::oc_info)>("oc_info");
  library.function<decltype(::oc_library_dir)>("oc_library_dir")(sdkDirectory.c_str());
  if (scan() != cameraCount) {
    throw std::runtime_error("the scan did not find 512 cameras: " +
                             std::string(library.function<decltype(::oc_error)>("oc_error")()));
  }

  const auto times = benchmarks::medianTimes(rounds, {[scan] { scan(); },
                                                      [&] {
                                                        scanAsi();
                                                        scanPlayerOne();
                                                        scanQhy();
                                                        scanToupTek();
                                                      },
                                                      [info] {
                                                        for (int i = 0; i < cameraCount; ++i) {
                                                          info(i);
                                                        }
                                                      }});
  const double own = (times[0] - times[1]) / cameraCount;
  std::printf("  oc_scan, 512 cameras: %.1f us, of it in the SDKs %.1f us: own %.0f ns a camera\n",
              times[0] / 1e3, times[1] / 1e3, own);
  std::printf("  oc_info: %.0f ns a call\n", times[2] / cameraCount);
  const bool isWithinGate = own <= gateNs;
  std::printf("  own cost of a camera at most %.0f ns: %s\n", gateNs, isWithinGate ? "yes" : "NO");
  return isWithinGate;
}

}  // namespace
}  // namespace orvane

int main(int count, char** arguments) {
  return orvane::benchmarks::runBenchmark(
      "scan_cost LIBRARY_FILE INSTANT_SDK_DIRECTORY [GATE_NS]", count >= 3, [&] {
        const double gateNs = count > 3 ? std::strtod(arguments[3], nullptr) : 5000;
        return orvane::run(arguments[1], orvane::benchmarks::fullPath(arguments[2]).string(),
                           gateNs);
      });
}
