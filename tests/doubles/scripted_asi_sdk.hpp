// A test double of ZWO's SDK: one camera of 64 x 48 pixels with the id 5. A test can replace or
// remove single functions.
#pragma once

#include <cstring>

#include "doubles/scripted_platform.hpp"
#include "vendors/sdk/asi_sdk.hpp"

namespace orvane::scripted {

/// Adds every function of the SDK.
inline void addWorkingAsiSdk(Library& sdk) {
  sdk.add(ASIGetNumOfConnectedCameras, [] { return 1; });
  sdk.add(ASIGetCameraProperty, [](ASI_CAMERA_INFO* info, int) {
    std::strcpy(info->Name, "scripted");
    info->CameraID = 5;
    info->MaxWidth = 64;
    info->MaxHeight = 48;
    info->SupportedBins[0] = 1;
    info->SupportedVideoFormat[1] = ASI_IMG_END;
    return 0;
  });
  sdk.add(ASIOpenCamera, [](int) { return 0; });
  sdk.add(ASIInitCamera, [](int) { return 0; });
  sdk.add(ASICloseCamera, [](int) { return 0; });
  sdk.add(ASIGetNumOfControls, [](int, int* count) {
    *count = 3;
    return 0;
  });
  sdk.add(ASIGetControlCaps, [](int, int index, ASI_CONTROL_CAPS* caps) {
    const int types[] = {ASI_GAIN, ASI_EXPOSURE, ASI_OFFSET};
    caps->ControlType = types[index];
    caps->MinValue = 1;
    caps->MaxValue = 100;
    caps->IsWritable = 1;
    return 0;
  });
  sdk.add(ASIGetControlValue, [](int, int, long* value, int*) {
    *value = -105;
    return 0;
  });
  sdk.add(ASISetControlValue, [](int, int, long, int) { return 0; });
  sdk.add(ASISetROIFormat, [](int, int, int, int, int) { return 0; });
  sdk.add(ASIGetROIFormat, [](int, int* width, int* height, int*, int*) {
    *width = 64;
    *height = 48;
    return 0;
  });
  sdk.add(ASISetStartPos, [](int, int, int) { return 0; });
  sdk.add(ASIStartVideoCapture, [](int) { return 0; });
  sdk.add(ASIStopVideoCapture, [](int) { return 0; });
  sdk.add(ASIGetVideoData, [](int, unsigned char*, long, int) { return 0; });
}

}  // namespace orvane::scripted
