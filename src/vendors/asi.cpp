// ZWO ASI cameras. They are addressed by the SDK's camera id, `vendorIndex`.
#include "api/failure.hpp"
#include "vendors/bayer_pattern.hpp"
#include "vendors/sdk/asi_sdk.hpp"
#include "vendors/sdk_text.hpp"
#include "vendors/swap_red_and_blue.hpp"
#include "vendors/vendor_rows.hpp"

namespace orvane {

namespace {

// Maps PixelFormat to ASI_IMG_* and back. The mapping is its own inverse: it swaps 1 and 2.
int swapFormatCode(int format) {
  switch (format) {
    case Raw16:
      return ASI_IMG_RAW16;
    case Rgb24:
      return ASI_IMG_RGB24;
    default:
      return format;
  }
}

CameraInfo describe(const ASI_CAMERA_INFO& sdkInfo) {
  CameraInfo camera;
  camera.vendor = Vendor::Asi;
  camera.vendorIndex = sdkInfo.CameraID;
  camera.name = boundedText(sdkInfo.Name);
  camera.maxWidth = static_cast<std::int32_t>(sdkInfo.MaxWidth);
  camera.maxHeight = static_cast<std::int32_t>(sdkInfo.MaxHeight);
  camera.bitDepth = sdkInfo.BitDepth;
  camera.pixelSizeUm = sdkInfo.PixelSize;
  camera.isColor = sdkInfo.IsColorCam != 0;
  camera.isCooled = sdkInfo.IsCoolerCam != 0;
  camera.isUsb3Camera = sdkInfo.IsUSB3Camera != 0;
  camera.isUsb3Host = sdkInfo.IsUSB3Host != 0;
  camera.bayer = camera.isColor ? bayerOfPattern(sdkInfo.BayerPattern) : BayerNone;
  camera.bins = boundedList(sdkInfo.SupportedBins, 0);
  camera.formats = boundedList(sdkInfo.SupportedVideoFormat, ASI_IMG_END);
  for (std::int32_t& format : camera.formats) {
    format = swapFormatCode(format);
  }
  return camera;
}

// Reads the limits of an open camera.
void readLimits(CameraInfo& camera) {
  const int id = camera.vendorIndex;
  ASIInitCamera.check(id);
  int count = 0;
  ASIGetNumOfControls.checkAs("ASI controls", id, &count);
  for (int i = 0; i < count; ++i) {
    ASI_CONTROL_CAPS caps{};
    if (ASIGetControlCaps(id, i, &caps) != 0) {
      continue;
    }
    if (caps.ControlType == ASI_GAIN) {
      camera.minGain = static_cast<std::int32_t>(caps.MinValue);
      camera.maxGain = static_cast<std::int32_t>(caps.MaxValue);
    } else if (caps.ControlType == ASI_EXPOSURE) {
      camera.maxExposureUs = caps.MaxValue;
    }
  }
}

void scanAsiCameras() {
  const int count = ASIGetNumOfConnectedCameras();
  for (int i = 0; i < count; ++i) {
    ASI_CAMERA_INFO sdkInfo{};
    ASIGetCameraProperty.check(&sdkInfo, i);
    CameraInfo camera = describe(sdkInfo);
    // A camera that another program has open is listed, too, but without its limits.
    if (ASIOpenCamera(camera.vendorIndex) == 0) {
      quietly([&] { readLimits(camera); });
      ASICloseCamera(camera.vendorIndex);
    }
    state.catalogue.push_back(camera);
  }
}

void open(ActiveCamera& camera) {
  ASIOpenCamera.check(camera.info.vendorIndex);
}

void configure(ActiveCamera& camera, std::int32_t bin) {
  const int id = camera.info.vendorIndex;
  ASIInitCamera.check(id);
  ASISetROIFormat.check(id, camera.width, camera.height, bin, swapFormatCode(camera.format));
  // ASISetROIFormat has moved the region to the sensor's centre.
  ASISetStartPos.check(id, 0, 0);
  int ignoredBin = 0;
  int ignoredType = 0;
  ASIGetROIFormat.check(id, &camera.width, &camera.height, &ignoredBin, &ignoredType);
}

void start(const ActiveCamera& camera) {
  ASIStartVideoCapture.check(camera.info.vendorIndex);
}

bool read(const ActiveCamera& camera, FrameBuffer buffer, std::int32_t timeoutMs) {
  const int result =
      ASIGetVideoData(camera.info.vendorIndex, buffer.data, buffer.length, timeoutMs);
  if (result == ASI_ERROR_TIMEOUT) {
    return false;
  }
  ASIGetVideoData.checkResultOf(result);
  if (camera.format == Rgb24) {
    swapRedAndBlue(buffer.data, static_cast<std::size_t>(frameBytes(camera)));
  }
  return true;
}

void setOffset(int id, std::int32_t offset) {
  int count = 0;
  ASIGetNumOfControls.checkAs("ASI controls", id, &count);
  for (int i = 0; i < count; ++i) {
    ASI_CONTROL_CAPS caps{};
    ASIGetControlCaps.checkAs("ASI control caps", id, i, &caps);
    if (caps.ControlType == ASI_OFFSET && caps.IsWritable != 0) {
      ASISetControlValue.checkAs("ASI offset", id, ASI_OFFSET, offset, ASI_FALSE);
    }
  }
}

void apply(const ActiveCamera& camera, CameraSettings settings) {
  const int id = camera.info.vendorIndex;
  ASISetControlValue.checkAs("ASI exposure", id, ASI_EXPOSURE, settings.exposureUs, ASI_FALSE);
  ASISetControlValue.checkAs("ASI gain", id, ASI_GAIN, settings.gain, ASI_FALSE);
  setOffset(id, settings.offset);
}

double temperature(const ActiveCamera& camera) {
  long tenths = 0;
  int ignoredAuto = 0;
  ASIGetControlValue.checkAs("ASI temperature", camera.info.vendorIndex, ASI_TEMPERATURE, &tenths,
                             &ignoredAuto);
  return static_cast<double>(tenths) / 10.0;
}

void stop(const ActiveCamera& camera) {
  ASIStopVideoCapture(camera.info.vendorIndex);
}

void close(const ActiveCamera& camera) {
  ASICloseCamera(camera.info.vendorIndex);
}

}  // namespace

constinit const VendorFamily asiFamily{
    .vendor = Vendor::Asi,
    .baseName = "ASICamera2",
    .widthStep = 8,
    .heightStep = 2,
    .scan = scanAsiCameras,
    .open = open,
    .configure = configure,
    .frameMemory = frameSizeOnly,
    .start = start,
    .read = read,
    .apply = apply,
    .temperature = temperature,
    .stop = stop,
    .close = close,
};

}  // namespace orvane
