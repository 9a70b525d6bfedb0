// What all camera families have in common: a row for each family with the expected calls and
// results, and test cases that every row must pass.
#include <limits>

#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

constexpr int leastInt = std::numeric_limits<int>::min();

struct Opened {
  int width;
  int height;
  int bufferSize;
};

struct Settings {
  std::int64_t exposureUs;
  int gain;
  int offset;
};

struct Reading {
  double reported;
  double celsius;
  const char* calls;
};

// "Calls" are lines of the SDK's log, "functions" are names. `xFunction` is the one that a test
// makes fail in step x of a session.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): in the order of a session
struct FamilyRow {
  const char* sdk;
  std::int64_t failure;  ///< a code with which calls fail

  const char* countFunction;
  const char* scanCalls;
  const char* description;
  std::size_t nameSize;  ///< of the SDK's field

  int bin;
  int format;
  const char* openCalls;  ///< with this bin and format
  Opened opened;
  int frameMemory = 0;                   ///< the least size of a buffer
  std::vector<const char*> formatCalls;  ///< the call that sets format 0, 1, ...

  const char* frameFunction;
  const char* readCalls;
  const char* noFrameCalls;
  std::vector<std::int64_t> noFrameCodes;

  const char* settingFunction;
  Settings settings;
  const char* applyCalls;  ///< with these settings

  const char* temperatureFunction;
  const char* temperatureOutput;
  std::vector<Reading> readings;

  const char* stopFunction;
  const char* closeCalls;  ///< when stop and close fail
};

std::ostream& operator<<(std::ostream& stream, const FamilyRow& row) {
  return stream << row.sdk;
}

const FamilyRow asi{
    .sdk = "ASICamera2",
    .failure = 16,
    .countFunction = "ASIGetNumOfConnectedCameras",
    .scanCalls =
        "ASIGetNumOfConnectedCameras() = 1\n"
        "ASIGetCameraProperty(0 -> \"small\" id 7) = 0\n"
        "ASIOpenCamera(7) = 0\n"
        "ASIInitCamera(7) = 0\n"
        "ASIGetNumOfControls(7 -> 3) = 0\n"
        "ASIGetControlCaps(7, 0 -> type 0 [0, 1000] writable 1) = 0\n"
        "ASIGetControlCaps(7, 1 -> type 1 [32, 1000000000] writable 1) = 0\n"
        "ASIGetControlCaps(7, 2 -> type 5 [0, 20] writable 1) = 0\n"
        "ASICloseCamera(7) = 0\n",
    .description = R"({"id":0,"name":"small","maxWidth":320,"maxHeight":202,"bitDepth":12,)"
                   R"("pixelSizeUm":3.75,"isColor":true,"isCooled":false,"isUsb3Camera":true,)"
                   R"("isUsb3Host":true,"bins":[1,2],"formats":[0,2,1,3],"depths":[8,16],)"
                   R"("maxExposureUs":1000000000,"minGain":0,"maxGain":1000,"bayer":8})",
    .nameSize = 64,
    .bin = 1,
    .format = 0,
    .openCalls =
        "ASIOpenCamera(7) = 0\n"
        "ASIInitCamera(7) = 0\n"
        "ASISetROIFormat(7, 320, 202, 1, 0) = 0\n"
        "ASISetStartPos(7, 0, 0) = 0\n"
        "ASIGetROIFormat(7 -> 320, 202, 1, 0) = 0\n"
        "ASISetControlValue(7, 1, 20000, 0) = 0\n"
        "ASISetControlValue(7, 0, 150, 0) = 0\n"
        "ASIGetNumOfControls(7 -> 3) = 0\n"
        "ASIGetControlCaps(7, 0 -> type 0 [0, 1000] writable 1) = 0\n"
        "ASIGetControlCaps(7, 1 -> type 1 [32, 1000000000] writable 1) = 0\n"
        "ASIGetControlCaps(7, 2 -> type 5 [0, 20] writable 1) = 0\n"
        "ASISetControlValue(7, 5, 5, 0) = 0\n"
        "ASIStartVideoCapture(7) = 0\n",
    .opened = {320, 202, 320 * 202},
    .formatCalls = {"ASISetROIFormat(7, 320, 202, 1, 0) = 0\n",
                    "ASISetROIFormat(7, 320, 202, 1, 2) = 0\n",
                    "ASISetROIFormat(7, 320, 202, 1, 1) = 0\n",
                    "ASISetROIFormat(7, 320, 202, 1, 3) = 0\n"},
    .frameFunction = "ASIGetVideoData",
    .readCalls = "ASIGetVideoData(7, buffer, 65640, 540) = 0\n",
    .noFrameCalls = "ASIGetVideoData(7, buffer, 64640, 0) = 11\n",
    .noFrameCodes = {11},
    .settingFunction = "ASISetControlValue",
    .settings = {2147483647, -20, leastInt},
    .applyCalls =
        "ASISetControlValue(7, 1, 2147483647, 0) = 0\n"
        "ASISetControlValue(7, 0, -20, 0) = 0\n"
        "ASIGetNumOfControls(7 -> 3) = 0\n"
        "ASIGetControlCaps(7, 0 -> type 0 [0, 1000] writable 1) = 0\n"
        "ASIGetControlCaps(7, 1 -> type 1 [32, 1000000000] writable 1) = 0\n"
        "ASIGetControlCaps(7, 2 -> type 5 [0, 20] writable 1) = 0\n"
        "ASISetControlValue(7, 5, -2147483648, 0) = 0\n",
    .temperatureFunction = "ASIGetControlValue",
    .temperatureOutput = "value",
    .readings = {{-105, -10.5, "ASIGetControlValue(7, 8 -> -105, 0) = 0\n"},
                 {253, 25.3, "ASIGetControlValue(7, 8 -> 253, 0) = 0\n"},
                 {0, 0.0, "ASIGetControlValue(7, 8 -> 0, 0) = 0\n"}},
    .stopFunction = "ASIStopVideoCapture",
    .closeCalls = "ASIStopVideoCapture(7) = 16\nASICloseCamera(7) = 16\n",
};

const FamilyRow playerOne{
    .sdk = "PlayerOneCamera",
    .failure = 16,
    .countFunction = "POAGetCameraCount",
    .scanCalls =
        "POAGetCameraCount() = 1\n"
        "POAGetCameraProperties(0 -> \"small\" id 7) = 0\n"
        "POAOpenCamera(7) = 0\n"
        "POAInitCamera(7) = 0\n"
        "POAGetConfigAttributesByConfigID(7, 1 -> [0, 1000] writable 1) = 0\n"
        "POAGetConfigAttributesByConfigID(7, 0 -> [32, 1e+09] writable 1) = 0\n"
        "POACloseCamera(7) = 0\n",
    .description = R"({"id":0,"name":"small","maxWidth":320,"maxHeight":202,"bitDepth":12,)"
                   R"("pixelSizeUm":3.75,"isColor":true,"isCooled":false,"isUsb3Camera":true,)"
                   R"("isUsb3Host":true,"bins":[1,2],"formats":[0,1,2,3],"depths":[8,16],)"
                   R"("maxExposureUs":1000000000,"minGain":0,"maxGain":1000,"bayer":8})",
    .nameSize = 256,
    .bin = 2,
    .format = 1,
    .openCalls =
        "POAOpenCamera(7) = 0\n"
        "POAInitCamera(7) = 0\n"
        "POASetImageBin(7, 2) = 0\n"
        "POASetImageFormat(7, 1) = 0\n"
        "POASetImageSize(7, 160, 101) = 0\n"
        "POASetImageStartPos(7, 0, 0) = 0\n"
        "POAGetImageSize(7 -> 160, 100) = 0\n"
        "POASetConfig(7, 0, 20000, 0) = 0\n"
        "POASetConfig(7, 1, 150, 0) = 0\n"
        "POASetConfig(7, 7, 5, 0) = 0\n"
        "POAStartExposure(7, 0) = 0\n",
    .opened = {160, 100, 160 * 100 * 2},  // the SDK rounds the height
    .formatCalls = {"POASetImageFormat(7, 0) = 0\n", "POASetImageFormat(7, 1) = 0\n",
                    "POASetImageFormat(7, 2) = 0\n", "POASetImageFormat(7, 3) = 0\n"},
    .frameFunction = "POAGetImageData",
    .readCalls = "POAImageReady(7 -> 1) = 0\nPOAGetImageData(7, buffer, 65640, 540) = 0\n",
    .noFrameCalls = "POAImageReady(7 -> 0) = 0\n",
    .noFrameCodes = {9},
    .settingFunction = "POASetConfig",
    .settings = {2147483647, -3, leastInt},
    .applyCalls =
        "POASetConfig(7, 0, 2147483647, 0) = 0\n"
        "POASetConfig(7, 1, -3, 0) = 0\n"
        "POASetConfig(7, 7, -2147483648, 0) = 0\n",
    .temperatureFunction = "POAGetConfig",
    .temperatureOutput = "value",
    .readings = {{21.37, 21.37, "POAGetConfig(7, 3 -> 21.37, 0) = 0\n"}},
    .stopFunction = "POAStopExposure",
    .closeCalls = "POAStopExposure(7) = 16\nPOACloseCamera(7) = 16\n",
};

const FamilyRow qhy{
    .sdk = "qhyccd",
    .failure = 0xFFFFFFFF,
    .countFunction = "ScanQHYCCD",
    .scanCalls =
        "InitQHYCCDResource() = 0\n"
        "ScanQHYCCD() = 1\n"
        "GetQHYCCDId(0 -> \"small-0123\") = 0\n"
        "GetQHYCCDModel(\"small-0123\" -> \"small\") = 0\n"
        "OpenQHYCCD(\"small-0123\") = h1\n"
        "SetQHYCCDStreamMode(h1, 1) = 0\n"
        "InitQHYCCD(h1) = 0\n"
        "GetQHYCCDChipInfo(h1 -> 1.2, 0.7575, 320, 202, 3.75, 3.75, 12) = 0\n"
        "IsQHYCCDControlAvailable(h1, 20) = 4\n"
        "IsQHYCCDControlAvailable(h1, 18) = 4294967295\n"
        "IsQHYCCDControlAvailable(h1, 35) = 0\n"
        "IsQHYCCDControlAvailable(h1, 22) = 0\n"
        "IsQHYCCDControlAvailable(h1, 23) = 4294967295\n"
        "IsQHYCCDControlAvailable(h1, 24) = 4294967295\n"
        "GetQHYCCDParamMinMaxStep(h1, 8 -> 32, 1e+09, 1) = 0\n"
        "GetQHYCCDParamMinMaxStep(h1, 6 -> 0, 1000, 1) = 0\n"
        "CloseQHYCCD(h1) = 0\n",
    .description = R"({"id":0,"name":"small","maxWidth":320,"maxHeight":202,"bitDepth":12,)"
                   R"("pixelSizeUm":3.75,"isColor":true,"isCooled":false,"isUsb3Camera":false,)"
                   R"("isUsb3Host":false,"bins":[1,2],"formats":[0,1],"depths":[8,16],)"
                   R"("maxExposureUs":1000000000,"minGain":0,"maxGain":1000,"bayer":8})",
    .nameSize = 256,
    .bin = 2,
    .format = 1,
    .openCalls =
        "OpenQHYCCD(\"small-0123\") = h2\n"
        "SetQHYCCDStreamMode(h2, 1) = 0\n"
        "InitQHYCCD(h2) = 0\n"
        "SetQHYCCDBinMode(h2, 2, 2) = 0\n"
        "SetQHYCCDBitsMode(h2, 16) = 0\n"
        "SetQHYCCDResolution(h2, 0, 0, 160, 101) = 0\n"
        "GetQHYCCDMemLength(h2) = 193920\n"
        "SetQHYCCDParam(h2, 8, 20000) = 0\n"
        "SetQHYCCDParam(h2, 6, 150) = 0\n"
        "IsQHYCCDControlAvailable(h2, 7) = 0\n"
        "SetQHYCCDParam(h2, 7, 5) = 0\n"
        "BeginQHYCCDLive(h2) = 0\n",
    .opened = {160, 101, 320 * 202 * 3},
    .frameMemory = 320 * 202 * 3,
    .formatCalls = {"SetQHYCCDBitsMode(h2, 8) = 0\n", "SetQHYCCDBitsMode(h3, 16) = 0\n"},
    .frameFunction = "GetQHYCCDLiveFrame",
    .readCalls = "GetQHYCCDLiveFrame(h2, buffer -> 320, 202, 8, 1) = 0\n",
    .noFrameCalls = "GetQHYCCDLiveFrame(h2, buffer) = 4294967295\n",
    .noFrameCodes = {1, 4294967293, 4294967295},
    .settingFunction = "SetQHYCCDParam",
    .settings = {2147483647, -3, leastInt},
    .applyCalls =
        "SetQHYCCDParam(h2, 8, 2147483647) = 0\n"
        "SetQHYCCDParam(h2, 6, -3) = 0\n"
        "IsQHYCCDControlAvailable(h2, 7) = 0\n"
        "SetQHYCCDParam(h2, 7, -2147483648) = 0\n",
    .temperatureFunction = "GetQHYCCDParam",
    .temperatureOutput = "result",
    .readings = {{-9.25, -9.25, "GetQHYCCDParam(h2, 14) = -9.25\n"},
                 // The SDK's error code is passed on.
                 {4294967295, 4294967295, "GetQHYCCDParam(h2, 14) = 4294967295\n"}},
    .stopFunction = "StopQHYCCDLive",
    .closeCalls = "StopQHYCCDLive(h2) = 4294967295\nCloseQHYCCD(h2) = 4294967295\n",
};

const FamilyRow toupTek{
    .sdk = "toupcam",
    .failure = -2147467259,  // E_FAIL
    .countFunction = "Toupcam_EnumV2",
    .scanCalls =
        "Toupcam_EnumV2(buffer -> \"small\") = 1\n"
        "Toupcam_Open(\"small-0123\") = h1\n"
        "Toupcam_get_MaxBitDepth(h1) = 12\n"
        "Toupcam_get_RawFormat(h1 -> 1111967570, 8) = 0\n"
        "Toupcam_get_ExpTimeRange(h1 -> 32, 1000000000, 20000) = 0\n"
        "Toupcam_get_ExpoAGainRange(h1 -> 0, 1000, 100) = 0\n"
        "Toupcam_Close(h1)\n",
    .description = R"({"id":0,"name":"small","maxWidth":320,"maxHeight":202,"bitDepth":12,)"
                   R"("pixelSizeUm":3.75,"isColor":true,"isCooled":false,"isUsb3Camera":true,)"
                   R"("isUsb3Host":true,"bins":[1],"formats":[0,1],"depths":[8,16],)"
                   R"("maxExposureUs":1000000000,"minGain":0,"maxGain":1000,"bayer":8})",
    .nameSize = 64,
    .bin = 1,
    .format = 1,
    .openCalls =
        "Toupcam_Open(\"small-0123\") = h2\n"
        "Toupcam_put_Option(h2, 4, 1) = 0\n"
        "Toupcam_put_Option(h2, 6, 1) = 0\n"
        "Toupcam_put_Roi(h2, 0, 0, 320, 202) = 0\n"
        "Toupcam_get_FinalSize(h2 -> 320, 202) = 0\n"
        "Toupcam_put_AutoExpoEnable(h2, 0) = 0\n"
        "Toupcam_put_ExpoTime(h2, 20000) = 1\n"
        "Toupcam_put_ExpoAGain(h2, 150) = 0\n"
        "Toupcam_put_Option(h2, 21, 5) = 0\n"
        "Toupcam_StartPullModeWithCallback(h2, null, null) = 0\n",
    .opened = {320, 202, 320 * 202 * 2},
    .formatCalls = {"Toupcam_put_Option(h2, 6, 0) = 1\n", "Toupcam_put_Option(h3, 6, 1) = 0\n"},
    .frameFunction = "Toupcam_PullImageWithRowPitch",
    .readCalls = "Toupcam_PullImageWithRowPitch(h2, buffer, 8, -1 -> 320, 202) = 0\n",
    .noFrameCalls = "Toupcam_PullImageWithRowPitch(h2, buffer, 8, -1) = -2147483638\n",
    .noFrameCodes = {-2147483638},  // E_PENDING
    .settingFunction = "Toupcam_put_ExpoTime",
    .settings = {5000, 200, 7},
    .applyCalls =
        "Toupcam_put_AutoExpoEnable(h2, 0) = 1\n"
        "Toupcam_put_ExpoTime(h2, 5000) = 0\n"
        "Toupcam_put_ExpoAGain(h2, 200) = 0\n"
        "Toupcam_put_Option(h2, 21, 7) = 0\n",
    .temperatureFunction = "Toupcam_get_Temperature",
    .temperatureOutput = "tenthsOfDegree",
    .readings = {{-32768, -3276.8, "Toupcam_get_Temperature(h2 -> -32768) = 0\n"},
                 {253, 25.3, "Toupcam_get_Temperature(h2 -> 253) = 0\n"},
                 {-105, -10.5, "Toupcam_get_Temperature(h2 -> -105) = 0\n"}},
    .stopFunction = "Toupcam_Stop",
    .closeCalls = "Toupcam_Stop(h2) = -2147467259\nToupcam_Close(h2)\n",
};

const FamilyRow families[sdkCount]{asi, playerOne, qhy, toupTek};

class EachFamily : public FamilyTest, public ::testing::WithParamInterface<FamilyRow> {
 protected:
  EachFamily() : FamilyTest(GetParam().sdk) {
    // ZWO's SDK then lists only gain, exposure and offset of its 13 controls. Keeps the logs short.
    sdk.forceOutput("ASIGetNumOfControls", "count", 3);
  }

  const FamilyRow& row = GetParam();
};

std::string lastLine(const std::string& text) {
  return text.substr(text.rfind('\n', text.size() - 2) + 1);
}

TEST_P(EachFamily, ScanDescribesEveryPropertyAndClosesTheCamera) {
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(sdk.takeLog(), row.scanCalls);
  EXPECT_EQ(info(0), row.description);
  EXPECT_EQ(libraries(), row.sdk);
  EXPECT_EQ(error(), "");
  expectClean(sdk);
}

TEST_P(EachFamily, ScanWithoutCamerasEndsAfterTheirCount) {
  sdk.setCameras({});
  EXPECT_EQ(oc.scan(), 0);
  const std::string log = sdk.takeLog();
  const std::string withCamera = row.scanCalls;
  EXPECT_EQ(log, withCamera.substr(0, withCamera.find(row.countFunction)) + lastLine(log));
  EXPECT_TRUE(lastLine(log).starts_with(row.countFunction)) << log;
  EXPECT_EQ(libraries(), row.sdk);
  EXPECT_EQ(error(), "");
}

TEST_P(EachFamily, ScanThatFailsAtACameraKeepsTheCamerasBefore) {
  sdk.setCameras({small, secondCamera(), secondCamera()});
  sdk.forceResult(family.examineCall, row.failure, 2, 1);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(error(), std::string(family.examineCall) + ": " + std::to_string(row.failure));
  EXPECT_EQ(infoValue(0, "name"), "\"small\"");
  EXPECT_EQ(info(1), "{}");
  const std::string calls = sdk.takeCallsOf(family.examineCall);
  EXPECT_EQ(std::count(calls.begin(), calls.end(), '\n'), 2) << "the third must not be examined";
  expectClean(sdk);
}

TEST_P(EachFamily, ScanListsACameraThatCannotBeOpenedOnlyIfItsPropertiesAreKnown) {
  const SimCamera second = secondCamera();
  small.isBusy = 1;
  sdk.setCameras({small});
  EXPECT_EQ(oc.scan(), family.givesHandle ? 0 : 1);
  EXPECT_EQ(error(), "");
  const std::string last = lastLine(sdk.takeLog());
  EXPECT_TRUE(last.starts_with(family.openCall)) << "no call must follow, but " << last;
  if (!family.givesHandle) {
    EXPECT_EQ(infoValue(0, "name"), "\"small\"");
    EXPECT_EQ(infoValue(0, "maxWidth"), "320");
    EXPECT_EQ(infoValue(0, "bins"), "[1,2]");
    EXPECT_EQ(limits(), "0 0 0");
  }
  sdk.setCameras({small, second});
  const int count = oc.scan();
  EXPECT_EQ(count, family.givesHandle ? 1 : 2);
  EXPECT_EQ(infoValue(count - 1, "name"), "\"second\"");
  EXPECT_EQ(error(), "");
}

TEST_P(EachFamily, NameIsReadToItsNulOrToTheEndOfItsField) {
  setText(small.name, std::string(256, 'n'));
  rescan();
  EXPECT_EQ(infoValue(0, "name"), '"' + std::string(row.nameSize, 'n') + '"');
  setText(small.name, "");
  rescan();
  EXPECT_EQ(infoValue(0, "name"), "\"\"");
}

TEST_P(EachFamily, OpenConfiguresAndStarts) {
  scan();
  ASSERT_EQ(open(320, 202, row.bin, row.format), 1) << error();
  EXPECT_EQ(sdk.takeLog(), row.openCalls);
  EXPECT_EQ(oc.width(), row.opened.width);
  EXPECT_EQ(oc.height(), row.opened.height);
  EXPECT_EQ(oc.buffer_size(), row.opened.bufferSize);
  EXPECT_EQ(error(), "");
}

TEST_P(EachFamily, FramesOfEveryFormatReachTheHost) {
  const int bytesPerPixel[] = {1, 2, 3, 1};
  scan();
  for (std::size_t format = 0; format < row.formatCalls.size(); ++format) {
    SCOPED_TRACE("format " + std::to_string(format));
    ASSERT_EQ(open(320, 202, 1, static_cast<int>(format)), 1) << error();
    EXPECT_NE(sdk.takeLog().find(row.formatCalls[format]), std::string::npos);
    const int size = 320 * 202 * bytesPerPixel[format];
    EXPECT_EQ(oc.buffer_size(), std::max(size, row.frameMemory));
    for (int number = 0; number < 3; ++number) {
      int result = readFrame();
      for (int tries = 0; result == 0 && tries < 100; ++tries) {
        sdk.advance_clock(1000);
        result = readFrame();
      }
      EXPECT_EQ(result, size);
      frame.resize(static_cast<std::size_t>(size));
      std::vector<std::uint8_t> expected = rendered(number);
      if (&family == &sdkFamilies[0] && format == 2) {  // ZWO's RGB24 has blue first
        for (std::size_t i = 0; i < expected.size(); i += 3) {
          std::swap(expected[i], expected[i + 2]);
        }
      }
      EXPECT_TRUE(frame == expected) << "frame " << number;
    }
    oc.close();
  }
  expectClean(sdk);
}

TEST_P(EachFamily, ReadPassesTheHostsBufferLengthAndWait) {
  openSmall();
  sdk.advance_clock(100000);
  frame.resize(static_cast<std::size_t>(oc.buffer_size()) + 1000);
  EXPECT_EQ(oc.read(frame.data(), static_cast<int>(frame.size()), 540), 320 * 202);
  EXPECT_EQ(sdk.takeLog(), row.readCalls);
}

TEST_P(EachFamily, ReadWithoutAFrameIsNoErrorAndLeavesTheErrorText) {
  openSmall();
  EXPECT_EQ(oc.read(nullptr, 0, 0), -1);
  EXPECT_EQ(readFrame(family.waitsForFrames ? 0 : 100000), 0);
  EXPECT_EQ(sdk.takeLog(), row.noFrameCalls);
  for (const std::int64_t code : row.noFrameCodes) {
    onlyResult(row.frameFunction, code);
    EXPECT_EQ(nextFrame(), 0) << code;
  }
  EXPECT_EQ(error(), "Camera closed or buffer too small");
  sdk.clear_faults();
  EXPECT_EQ(nextFrame(), 320 * 202);
}

TEST_P(EachFamily, ApplySetsExposureGainAndOffsetInOrder) {
  openSmall();
  sdk.forceResult(row.settingFunction, 0);  // the SDKs refuse some of the settings
  EXPECT_EQ(oc.apply(row.settings.exposureUs, row.settings.gain, row.settings.offset), 1);
  EXPECT_EQ(sdk.takeLog(), row.applyCalls);
  EXPECT_EQ(error(), "");
}

TEST_P(EachFamily, ExposureOutOfRangeFailsBeforeAnySetting) {
  const std::int64_t exposures[] = {0, -1, 2147483648, std::int64_t{1} << 62,
                                    -(std::int64_t{1} << 32) + 1};
  openSmall();
  for (const std::int64_t exposure : exposures) {
    EXPECT_EQ(oc.apply(exposure, 150, 5), 0);
    EXPECT_EQ(error(), "Exposure out of range");
    EXPECT_EQ(sdk.takeLog(), "");
  }
  for (const std::int64_t exposure : exposures) {
    expectOpenFailed(oc.open(0, 320, 202, 1, 0, exposure, 150, 5), "Exposure out of range");
    EXPECT_EQ(sdk.takeCallsOf(row.settingFunction), "");
  }
}

TEST_P(EachFamily, TemperatureIsConvertedToDegrees) {
  openSmall();
  for (const auto& [reported, celsius, calls] : row.readings) {
    onlyOutput(row.temperatureFunction, row.temperatureOutput, reported);
    EXPECT_EQ(oc.temperature(), celsius);
    EXPECT_EQ(sdk.takeLog(), calls);
  }
}

TEST_P(EachFamily, CloseStopsThenClosesAndIgnoresFailures) {
  openSmall();
  sdk.forceResult(row.stopFunction, row.failure);
  sdk.forceResult(family.closeCall, row.failure);
  oc.close();
  EXPECT_EQ(sdk.takeLog(), row.closeCalls);
  EXPECT_EQ(error(), "");
  expectClosed();
}

std::string nameOf(const ::testing::TestParamInfo<FamilyRow>& instance) {
  return instance.param.sdk;
}

INSTANTIATE_TEST_SUITE_P(Sdks, EachFamily, ::testing::ValuesIn(families), nameOf);

// The families whose SDKs address a camera by an id and list its bins, formats and Bayer pattern.
using FamilyWithIds = EachFamily;

TEST_P(FamilyWithIds, NegativeCountMeansNoCameras) {
  sdk.forceResult(row.countFunction, -1);
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(sdk.takeLog(), std::string(row.countFunction) + "() = -1\n");
  EXPECT_EQ(error(), "");
}

TEST_P(FamilyWithIds, BayerCodesOfAllPatternsAndZeroForOthers) {
  const int expected[][2] = {{0, 8}, {1, 11}, {2, 9},          {3, 10},
                             {4, 0}, {-1, 0}, {2147483647, 0}, {77, 0}};
  for (const auto& [pattern, bayer] : expected) {
    small.bayerPattern = pattern;
    small.isColor = 1;
    rescan();
    EXPECT_EQ(infoValue(0, "bayer"), std::to_string(bayer)) << pattern;
    EXPECT_EQ(infoValue(0, "isColor"), "true");
    small.isColor = 0;
    rescan();
    EXPECT_EQ(infoValue(0, "bayer"), "0") << "monochrome, " << pattern;
  }
}

TEST_P(FamilyWithIds, ListsThatBeginWithTheEndMarkAreEmpty) {
  small.bins[0] = 0;
  small.formats[0] = -1;
  rescan();
  EXPECT_EQ(infoValue(0, "bins"), "[]");
  EXPECT_EQ(infoValue(0, "formats"), "[]");
  EXPECT_EQ(infoValue(0, "depths"), "[8]");
  expectOpenFailed(open(), "Unsupported bin or format");
}

INSTANTIATE_TEST_SUITE_P(Sdks, FamilyWithIds, ::testing::Values(asi, playerOne), nameOf);

TEST_F(LibraryTest, QhyAndToupTekRecordsStayWhenTheCloseIsMissingAfterwards) {
  install("qhyccd", {"CloseQHYCCD"});
  install("toupcam", {"Toupcam_Close"});
  EXPECT_EQ(oc.scan(), 2) << "one of each; the scan does not examine the others";
  EXPECT_EQ(error(), "qhyccd: missing CloseQHYCCD; toupcam: missing Toupcam_Close");
}

}  // namespace
}  // namespace orvane::testing
