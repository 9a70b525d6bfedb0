// Discovery of ZWO ASI cameras: the order of the calls, the description of each property, and the
// effect of each failure.
#include "library/asi_test.hpp"

namespace orvane::testing {
namespace {

using AsiDiscovery = AsiTest;

SimCamera namedCamera(const char* name, int id) {
  SimCamera camera = smallAsiCamera();
  setText(camera.name, name);
  camera.id = id;
  return camera;
}

TEST_F(AsiDiscovery, CallsInOrderForOneCamera) {
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(sdk.takeLog(),
            "ASIGetNumOfConnectedCameras() = 1\n"
            "ASIGetCameraProperty(0 -> \"small\" id 7) = 0\n"
            "ASIOpenCamera(7) = 0\n"
            "ASIInitCamera(7) = 0\n"
            "ASIGetNumOfControls(7 -> 13) = 0\n"
            "ASIGetControlCaps(7, 0 -> type 0 [0, 100] writable 1) = 0\n"
            "ASIGetControlCaps(7, 1 -> type 1 [32, 1000000000] writable 1) = 0\n"
            "ASIGetControlCaps(7, 2 -> type 5 [0, 20] writable 1) = 0\n"
            "ASIGetControlCaps(7, 3 -> type 6 [40, 100] writable 1) = 0\n"
            "ASIGetControlCaps(7, 4 -> type 9 [0, 3] writable 1) = 0\n"
            "ASIGetControlCaps(7, 5 -> type 10 [0, 100] writable 1) = 0\n"
            "ASIGetControlCaps(7, 6 -> type 11 [1, 60000] writable 1) = 0\n"
            "ASIGetControlCaps(7, 7 -> type 12 [50, 160] writable 1) = 0\n"
            "ASIGetControlCaps(7, 8 -> type 13 [0, 1] writable 1) = 0\n"
            "ASIGetControlCaps(7, 9 -> type 14 [0, 1] writable 1) = 0\n"
            "ASIGetControlCaps(7, 10 -> type 8 [-500, 1000] writable 0) = 0\n"
            "ASIGetControlCaps(7, 11 -> type 3 [1, 99] writable 1) = 0\n"
            "ASIGetControlCaps(7, 12 -> type 4 [1, 99] writable 1) = 0\n"
            "ASICloseCamera(7) = 0\n");
  expectClean(sdk);
}

TEST_F(AsiDiscovery, EveryPropertyIsDescribed) {
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(info(0), R"({"id":0,"name":"small","maxWidth":320,"maxHeight":202,"bitDepth":12,)"
                     R"("pixelSizeUm":3.75,"isColor":true,"isCooled":false,"isUsb3Camera":true,)"
                     R"("isUsb3Host":true,"bins":[1,2],"formats":[0,2,1,3],"depths":[8,16],)"
                     R"("maxExposureUs":1000000000,"minGain":0,"maxGain":100,"bayer":8})");
}

TEST_F(AsiDiscovery, FlagsAreTakenOneByOne) {
  SimCamera camera = smallAsiCamera();
  camera.isColor = 0;
  camera.isCooled = 1;
  camera.isUsb3Camera = 1;
  camera.isUsb3Host = 0;
  sdk.setCameras({camera});
  ASSERT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "isColor"), "false");
  EXPECT_EQ(infoValue(0, "isCooled"), "true");
  EXPECT_EQ(infoValue(0, "isUsb3Camera"), "true");
  EXPECT_EQ(infoValue(0, "isUsb3Host"), "false");
  camera.isColor = 2;
  camera.isCooled = 0;
  camera.isUsb3Camera = 0;
  camera.isUsb3Host = -1;
  sdk.setCameras({camera});
  ASSERT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "isColor"), "true") << "anything but 0";
  EXPECT_EQ(infoValue(0, "isCooled"), "false");
  EXPECT_EQ(infoValue(0, "isUsb3Camera"), "false");
  EXPECT_EQ(infoValue(0, "isUsb3Host"), "true");
}

TEST_F(AsiDiscovery, NoCamerasMeansOneCallAndNoMessage) {
  sdk.setCameras({});
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(sdk.takeLog(), "ASIGetNumOfConnectedCameras() = 0\n");
  EXPECT_EQ(libraries(), "ASICamera2");
  EXPECT_EQ(error(), "");
}

TEST_F(AsiDiscovery, NegativeCountMeansNoCameras) {
  sdk.forceResult("ASIGetNumOfConnectedCameras", -1);
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(sdk.takeLog(), "ASIGetNumOfConnectedCameras() = -1\n");
  EXPECT_EQ(error(), "");
}

TEST_F(AsiDiscovery, CamerasAreListedInTheSdksOrderAndUsedByTheirIds) {
  sdk.setCameras({namedCamera("first", 4), namedCamera("second", 2)});
  ASSERT_EQ(oc.scan(), 2);
  EXPECT_EQ(infoValue(0, "name"), "\"first\"");
  EXPECT_EQ(infoValue(1, "name"), "\"second\"");
  sdk.takeLog();
  ASSERT_EQ(oc.open(1, 320, 202, 1, 0, 20000, 10, 5), 1);
  EXPECT_EQ(sdk.takeLog().substr(0, 20), "ASIOpenCamera(2) = 0");
}

TEST_F(AsiDiscovery, CameraThatCannotBeOpenedIsListedWithoutLimitsAndNotClosed) {
  SimCamera busy = smallAsiCamera();
  busy.isBusy = 1;
  sdk.setCameras({busy});
  EXPECT_EQ(oc.scan(), 1);
  const std::string log = sdk.takeLog();
  EXPECT_EQ(log.find("ASICloseCamera"), std::string::npos) << log;
  EXPECT_EQ(log.find("ASIInitCamera"), std::string::npos) << log;
  EXPECT_EQ(error(), "");
  EXPECT_EQ(infoValue(0, "name"), "\"small\"");
  EXPECT_EQ(infoValue(0, "maxWidth"), "320");
  EXPECT_EQ(infoValue(0, "bins"), "[1,2]");
  EXPECT_EQ(infoValue(0, "minGain"), "0");
  EXPECT_EQ(infoValue(0, "maxGain"), "0");
  EXPECT_EQ(infoValue(0, "maxExposureUs"), "0");
}

TEST_F(AsiDiscovery, CameraWhoseInitFailsIsClosedAndListedWithoutLimits) {
  sdk.forceResult("ASIInitCamera", 16);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(sdk.takeLog(),
            "ASIGetNumOfConnectedCameras() = 1\n"
            "ASIGetCameraProperty(0 -> \"small\" id 7) = 0\n"
            "ASIOpenCamera(7) = 0\n"
            "ASIInitCamera(7) = 16\n"
            "ASICloseCamera(7) = 0\n");
  EXPECT_EQ(error(), "");
  EXPECT_EQ(infoValue(0, "maxGain"), "0");
  expectClean(sdk);
}

TEST_F(AsiDiscovery, CameraWhoseControlCountFailsIsClosedAndListedWithoutLimits) {
  sdk.forceResult("ASIGetNumOfControls", 4);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(error(), "");
  EXPECT_EQ(infoValue(0, "maxGain"), "0");
  EXPECT_EQ(infoValue(0, "maxExposureUs"), "0");
  expectClean(sdk);
}

TEST_F(AsiDiscovery, ControlThatFailsIsSkippedSilently) {
  sdk.forceResult("ASIGetControlCaps", 3, 1, 1);  // gain
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(error(), "");
  EXPECT_EQ(infoValue(0, "maxGain"), "0");
  EXPECT_EQ(infoValue(0, "maxExposureUs"), "1000000000");
}

TEST_F(AsiDiscovery, LaterControlOfATypeWins) {
  sdk.forceOutput("ASIGetControlCaps", "ControlType", 0, 3, 1);  // offset reports the type of gain
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "maxGain"), "20");
}

TEST_F(AsiDiscovery, NegativeLimitsStayNegative) {
  sdk.forceOutput("ASIGetControlCaps", "MaxValue", -5, 2, 1);
  sdk.forceOutput("ASIGetControlCaps", "MinValue", -7, 1, 1);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "maxExposureUs"), "-5");
  EXPECT_EQ(infoValue(0, "minGain"), "-7");
}

TEST_F(AsiDiscovery, FailingPropertyEndsTheDiscoveryAndKeepsTheCamerasBefore) {
  sdk.setCameras({namedCamera("first", 4), namedCamera("second", 2), namedCamera("third", 1)});
  sdk.forceResult("ASIGetCameraProperty", 5, 2, 1);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(error(), "ASIGetCameraProperty: 5");
  EXPECT_EQ(infoValue(0, "name"), "\"first\"");
  expectClean(sdk);
}

TEST_F(AsiDiscovery, CodesArePrintedSigned) {
  sdk.forceResult("ASIGetCameraProperty", -3);
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(error(), "ASIGetCameraProperty: -3");
}

TEST_F(AsiDiscovery, AnotherScanStartsWithAnEmptyCatalogue) {
  sdk.setCameras({namedCamera("first", 4), namedCamera("second", 2)});
  EXPECT_EQ(oc.scan(), 2);
  sdk.set_plugged(0, 0);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "name"), "\"second\"");
  EXPECT_EQ(info(1), "{}");
}

TEST_F(AsiDiscovery, BayerCodesOfAllPatternsAndZeroForOthers) {
  const int expected[][2] = {{0, 8}, {1, 11}, {2, 9}, {3, 10}, {4, 0}, {-1, 0}, {2147483647, 0}};
  for (const auto& [pattern, bayer] : expected) {
    SimCamera camera = smallAsiCamera();
    camera.bayerPattern = pattern;
    sdk.setCameras({camera});
    ASSERT_EQ(oc.scan(), 1);
    EXPECT_EQ(infoValue(0, "bayer"), std::to_string(bayer)) << "pattern " << pattern;
    camera.isColor = 0;
    sdk.setCameras({camera});
    ASSERT_EQ(oc.scan(), 1);
    EXPECT_EQ(infoValue(0, "bayer"), "0") << "monochrome, pattern " << pattern;
  }
}

TEST_F(AsiDiscovery, FormatsAreTranslatedAndUnknownOnesKept) {
  SimCamera camera = smallAsiCamera();
  const std::int32_t formats[8] = {0, 1, 2, 3, -2, 4, 77, 1};
  std::memcpy(camera.formats, formats, sizeof formats);
  sdk.setCameras({camera});
  ASSERT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "formats"), "[0,2,1,3,-2,4,77,2]")
      << "all eight, although no end mark follows";
}

TEST_F(AsiDiscovery, BinsEndAtTheFirstZeroOrAfterSixteen) {
  SimCamera camera = smallAsiCamera();
  const std::int32_t four[16] = {1, 2, 3, 4, 0, 6};
  std::memcpy(camera.bins, four, sizeof four);
  sdk.setCameras({camera});
  ASSERT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "bins"), "[1,2,3,4]");
  for (int& bin : camera.bins) {
    bin = -9;
  }
  sdk.setCameras({camera});
  ASSERT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "bins"), "[-9,-9,-9,-9,-9,-9,-9,-9,-9,-9,-9,-9,-9,-9,-9,-9]");
}

TEST_F(AsiDiscovery, EmptyListsStayEmpty) {
  SimCamera camera = smallAsiCamera();
  camera.bins[0] = 0;
  camera.formats[0] = -1;
  sdk.setCameras({camera});
  ASSERT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "bins"), "[]");
  EXPECT_EQ(infoValue(0, "formats"), "[]");
  EXPECT_EQ(infoValue(0, "depths"), "[8]");
  EXPECT_EQ(oc.open(0, 320, 202, 1, 0, 20000, 10, 5), 0);
  EXPECT_EQ(error(), "Unsupported bin or format");
}

TEST_F(AsiDiscovery, NameWithoutANulIsReadToTheEndOfItsField) {
  SimCamera camera = smallAsiCamera();
  setText(camera.name, std::string(200, 'x'));
  sdk.setCameras({camera});
  ASSERT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "name"), '"' + std::string(64, 'x') + '"');
}

TEST_F(AsiDiscovery, NameIsEscapedInTheDescription) {
  SimCamera camera = smallAsiCamera();
  setText(camera.name, "a\"b\\c\td\ne\xc3\xa9");
  sdk.setCameras({camera});
  ASSERT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "name"), "\"a\\\"b\\\\cde\xc3\xa9\"");
}

TEST_F(AsiDiscovery, PixelSizesInTheRuntimesNumberFormat) {
  const std::pair<double, const char*> sizes[] = {{2.9, "2.9"}, {3.75, "3.75"},  {4.63, "4.63"},
                                                  {2.0, "2"},   {1e-7, "1e-07"}, {1e6, "1e+06"}};
  for (const auto& [micrometres, text] : sizes) {
    SimCamera camera = smallAsiCamera();
    camera.pixelSizeUm = micrometres;
    sdk.setCameras({camera});
    ASSERT_EQ(oc.scan(), 1);
    EXPECT_EQ(infoValue(0, "pixelSizeUm"), text);
  }
}

TEST_F(AsiDiscovery, DefaultCamerasAreListed) {
  sdk.reset();
  EXPECT_GE(oc.scan(), 3);
  EXPECT_EQ(error(), "");
  expectClean(sdk);
}

}  // namespace
}  // namespace orvane::testing
