// Real SDK files that lack one function: the library's results and messages for each family.
#include <cmath>
#include <optional>

#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

// One function for each step of a session.
struct Functions {
  const char* sdk;
  const char* configure;
  const char* read;
  const char* apply;
  const char* temperature;
  const char* stop;
  const char* close;
};

class MissingFunction : public LibraryTest, public ::testing::WithParamInterface<Functions> {
 protected:
  // Scans and opens the only camera of an SDK that lacks this function.
  int openWithout(const char* function) {
    sdk.emplace(install(GetParam().sdk, {function}));
    SimCamera camera = smallCamera(familyNamed(GetParam().sdk));
    camera.gainMax = 1000;
    sdk->setCameras({camera});
    EXPECT_EQ(oc.scan(), 1) << error();
    sdk->takeLog();
    return oc.open(0, 320, 202, 1, 0, 20000, 150, 5);
  }

  std::string message(const char* function) const {
    return std::string(GetParam().sdk) + ": missing " + function;
  }

  std::optional<SimulatedSdk> sdk;
};

TEST_P(MissingFunction, OfTheConfigurationFailsTheOpenAndClosesTheDevice) {
  EXPECT_EQ(openWithout(GetParam().configure), 0);
  EXPECT_EQ(error(), message(GetParam().configure));
  expectClean(*sdk);
  expectClosed();
}

TEST_P(MissingFunction, OfTheFrameFailsTheReadAndTheCameraKeepsStreaming) {
  ASSERT_EQ(openWithout(GetParam().read), 1) << error();
  sdk->advance_clock(100000);
  EXPECT_EQ(readFrame(), -1);
  EXPECT_EQ(error(), message(GetParam().read));
  EXPECT_EQ(sdk->invariants().streamsRunning, 1);
}

TEST_P(MissingFunction, OfTheSettingsFailsTheOpen) {
  EXPECT_EQ(openWithout(GetParam().apply), 0);
  EXPECT_EQ(error(), message(GetParam().apply));
  expectClean(*sdk);
}

TEST_P(MissingFunction, OfTheTemperatureGivesNanWithoutAMessage) {
  ASSERT_EQ(openWithout(GetParam().temperature), 1) << error();
  EXPECT_TRUE(std::isnan(oc.temperature()));
  EXPECT_EQ(error(), "");
}

TEST_P(MissingFunction, ThatStopsStillLetsTheDeviceBeClosed) {
  ASSERT_EQ(openWithout(GetParam().stop), 1) << error();
  sdk->takeLog();
  oc.close();
  EXPECT_EQ(sdk->takeLog().substr(0, std::strlen(GetParam().close)), GetParam().close);
  EXPECT_EQ(error(), "");
  EXPECT_EQ(sdk->invariants().devicesOpen, 0);
  expectClosed();
}

INSTANTIATE_TEST_SUITE_P(
    Families, MissingFunction,
    ::testing::Values(
        Functions{"ASICamera2", "ASIGetROIFormat", "ASIGetVideoData", "ASISetControlValue",
                  "ASIGetControlValue", "ASIStopVideoCapture", "ASICloseCamera"},
        Functions{"PlayerOneCamera", "POASetImageSize", "POAGetImageData", "POASetConfig",
                  "POAGetConfig", "POAStopExposure", "POACloseCamera"},
        Functions{"qhyccd", "GetQHYCCDMemLength", "GetQHYCCDLiveFrame", "SetQHYCCDParam",
                  "GetQHYCCDParam", "StopQHYCCDLive", "CloseQHYCCD"},
        Functions{"toupcam", "Toupcam_get_FinalSize", "Toupcam_PullImageWithRowPitch",
                  "Toupcam_put_ExpoAGain", "Toupcam_get_Temperature", "Toupcam_Stop",
                  "Toupcam_Close"}),
    [](const auto& instance) { return std::string(instance.param.sdk); });

TEST_F(LibraryTest, QhyAndToupTekScansCloseTheCameraWhenAFunctionIsMissingWhileItIsOpen) {
  const SimulatedSdk qhy = install("qhyccd", {"GetQHYCCDParamMinMaxStep"});
  const SimulatedSdk toupTek = install("toupcam", {"Toupcam_get_ExpTimeRange"});
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(error(),
            "qhyccd: missing GetQHYCCDParamMinMaxStep; toupcam: missing Toupcam_get_ExpTimeRange");
  expectClean(qhy);
  expectClean(toupTek);
}

TEST_F(LibraryTest, QhyAndToupTekRecordsStayWhenTheCloseIsMissingAfterwards) {
  install("qhyccd", {"CloseQHYCCD"});
  install("toupcam", {"Toupcam_Close"});
  EXPECT_EQ(oc.scan(), 2) << "one of each; the scan does not examine the others";
  EXPECT_EQ(error(), "qhyccd: missing CloseQHYCCD; toupcam: missing Toupcam_Close");
}

TEST_F(LibraryTest, PlayerOneListsACameraWhoseInitOrRangesAreMissing) {
  const SimulatedSdk sdk = install("PlayerOneCamera", {"POAGetConfigAttributesByConfigID"});
  sdk.setCameras({smallCamera()});
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(error(), "");
  EXPECT_EQ(infoValue(0, "maxGain"), "0");
  expectClean(sdk);
}

}  // namespace
}  // namespace orvane::testing
