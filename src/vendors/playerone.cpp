// Player One cameras. They are addressed by the SDK's camera id, `vendorIndex`.
#include "api/failure.hpp"
#include "vendors/bayer_pattern.hpp"
#include "vendors/sdk/playerone_sdk.hpp"
#include "vendors/sdk_text.hpp"
#include "vendors/vendor_rows.hpp"

namespace orvane {

namespace {

CameraInfo describe(const POACameraProperties& properties) {
  CameraInfo camera;
  camera.vendor = Vendor::PlayerOne;
  camera.vendorIndex = properties.cameraID;
  camera.name = boundedText(properties.cameraModelName);
  camera.maxWidth = properties.maxWidth;
  camera.maxHeight = properties.maxHeight;
  camera.bitDepth = properties.bitDepth;
  camera.pixelSizeUm = properties.pixelSize;
  camera.isColor = properties.isColorCamera != 0;
  camera.isCooled = properties.isHasCooler != 0;
  // The SDK reports the speed of the connection only, not those of the camera and the port.
  camera.isUsb3Camera = properties.isUSB3Speed != 0;
  camera.isUsb3Host = camera.isUsb3Camera;
  camera.bayer = camera.isColor ? bayerOfPattern(properties.bayerPattern) : BayerNone;
  camera.bins = boundedList(properties.bins, 0);
  camera.formats = boundedList(properties.imgFormats, POA_END);  // the same numbers as PixelFormat
  return camera;
}

// Reads the limits of an open camera. A limit that cannot be read stays 0.
void readLimits(CameraInfo& camera) {
  const int id = camera.vendorIndex;
  POAInitCamera.check(id);
  POAConfigAttributes attributes{};
  if (POAGetConfigAttributesByConfigID(id, POA_GAIN, &attributes) == 0) {
    camera.minGain = static_cast<std::int32_t>(attributes.minValue.intValue);
    camera.maxGain = static_cast<std::int32_t>(attributes.maxValue.intValue);
  }
  if (POAGetConfigAttributesByConfigID(id, POA_EXPOSURE, &attributes) == 0) {
    camera.maxExposureUs = static_cast<std::int32_t>(attributes.maxValue.intValue);
  }
}

void scanPlayerOneCameras() {
  const int count = POAGetCameraCount();
  for (int i = 0; i < count; ++i) {
    POACameraProperties properties{};
    POAGetCameraProperties.check(i, &properties);
    CameraInfo camera = describe(properties);
    // A camera that another program has open is listed, too, but without its limits.
    if (POAOpenCamera(camera.vendorIndex) == 0) {
      quietly([&] { readLimits(camera); });
      POACloseCamera(camera.vendorIndex);
    }
    state.catalogue.push_back(camera);
  }
}

void open(ActiveCamera& camera) {
  POAOpenCamera.check(camera.info.vendorIndex);
}

void configure(ActiveCamera& camera, std::int32_t bin) {
  const int id = camera.info.vendorIndex;
  POAInitCamera.check(id);
  POASetImageBin.check(id, bin);  // changes size and position, so it comes first
  POASetImageFormat.check(id, camera.format);
  POASetImageSize.check(id, camera.width, camera.height);
  POASetImageStartPos.check(id, 0, 0);
  POAGetImageSize.check(id, &camera.width, &camera.height);
}

void start(const ActiveCamera& camera) {
  POAStartExposure.check(camera.info.vendorIndex, POA_FALSE);  // not a single frame
}

bool read(const ActiveCamera& camera, FrameBuffer buffer, std::int32_t timeoutMs) {
  const int id = camera.info.vendorIndex;
  int isReady = POA_FALSE;
  POAImageReady.check(id, &isReady);
  if (isReady != POA_TRUE) {
    return false;
  }
  const int result = POAGetImageData(id, buffer.data, buffer.length, timeoutMs);
  if (result == POA_ERROR_TIMEOUT) {
    return false;
  }
  POAGetImageData.checkResultOf(result);
  return true;
}

void apply(const ActiveCamera& camera, CameraSettings settings) {
  const int id = camera.info.vendorIndex;
  // The union is passed by value. Initialising floatValue clears all of its eight bytes.
  POAConfigValue value{.floatValue = 0.0};
  value.intValue = settings.exposureUs;
  POASetConfig.checkAs("POA exposure", id, POA_EXPOSURE, value, POA_FALSE);
  value.intValue = settings.gain;
  POASetConfig.checkAs("POA gain", id, POA_GAIN, value, POA_FALSE);
  value.intValue = settings.offset;
  POASetConfig.checkAs("POA offset", id, POA_OFFSET, value, POA_FALSE);
}

double temperature(const ActiveCamera& camera) {
  POAConfigValue value{.floatValue = 0.0};
  int ignoredAuto = POA_FALSE;
  POAGetConfig.checkAs("POA temperature", camera.info.vendorIndex, POA_TEMPERATURE, &value,
                       &ignoredAuto);
  return value.floatValue;
}

void stop(const ActiveCamera& camera) {
  POAStopExposure(camera.info.vendorIndex);
}

void close(const ActiveCamera& camera) {
  POACloseCamera(camera.info.vendorIndex);
}

}  // namespace

constinit const VendorFamily playerOneFamily{
    .vendor = Vendor::PlayerOne,
    .baseName = "PlayerOneCamera",
    .widthStep = 1,
    .heightStep = 1,
    .scan = scanPlayerOneCameras,
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
