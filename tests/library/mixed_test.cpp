// Several SDKs together: which are found, whose failures are reported, and cameras of each in turn.
#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

using MixedScan = LibraryTest;

constexpr int familyCount = static_cast<int>(sdkCount);

TEST_F(MixedScan, AllInTheirFixedOrder) {
  std::vector<SimulatedSdk> sdks;
  for (std::size_t i = sdkCount; i-- > 0;) {
    sdks.push_back(install(sdkNames[i]));
    SimCamera camera = smallCamera(sdkFamilies[i]);
    setText(camera.name, sdkNames[i]);
    sdks.back().setCameras({camera});
  }
  EXPECT_EQ(oc.scan(), familyCount);
  EXPECT_EQ(libraries(), joinedSdkNames());
  EXPECT_EQ(error(), "");
  for (int i = 0; i < familyCount; ++i) {
    EXPECT_EQ(infoValue(i, "name"), '"' + std::string(sdkNames[static_cast<std::size_t>(i)]) + '"');
    EXPECT_EQ(infoValue(i, "id"), std::to_string(i));
  }
  for (const SimulatedSdk& sdk : sdks) {
    expectClean(sdk);
  }
}

TEST_F(MixedScan, TwoFailuresAreJoinedInOrderAndTheOthersCamerasKept) {
  const SimulatedSdk toupcam = install("toupcam");
  const SimulatedSdk qhy = install("qhyccd");
  const SimulatedSdk playerOne = install("PlayerOneCamera");
  const SimulatedSdk asi = install("ASICamera2");
  asi.forceResult("ASIGetCameraProperty", 5);
  qhy.forceResult("ScanQHYCCD", 0xFFFFFFFF);
  playerOne.setCameras({smallCamera()});
  toupcam.setCameras({});
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(error(), "ASIGetCameraProperty: 5; QHY scan failed");
  EXPECT_EQ(libraries(), "ASICamera2, PlayerOneCamera, qhyccd, toupcam");
  EXPECT_EQ(infoValue(0, "name"), "\"small\"");
}

TEST_F(MixedScan, SdkThatAppearsBetweenTwoScansTakesItsPlaceInTheOrder) {
  install("toupcam").setCameras({});
  const SimulatedSdk asi = install("ASICamera2");
  asi.setCameras({smallCamera()});
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(libraries(), "ASICamera2, toupcam");
  install("PlayerOneCamera").setCameras({smallCamera()});
  EXPECT_EQ(oc.scan(), 2);
  EXPECT_EQ(libraries(), "ASICamera2, PlayerOneCamera, toupcam");
}

TEST_F(MixedScan, RescanAfterUnpluggingMovesTheIndices) {
  const SimulatedSdk asi = install("ASICamera2");
  const SimulatedSdk playerOne = install("PlayerOneCamera");
  asi.setCameras({smallCamera()});
  SimCamera other = smallCamera();
  setText(other.name, "other");
  playerOne.setCameras({other});
  EXPECT_EQ(oc.scan(), 2);
  asi.set_plugged(0, 0);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "name"), "\"other\"");
  EXPECT_EQ(info(1), "{}");
  asi.set_plugged(0, 1);
  EXPECT_EQ(oc.scan(), 2);
  EXPECT_EQ(infoValue(0, "name"), "\"small\"");
}

TEST_F(MixedScan, LibrariesThatLackAFunctionNameItInOrder) {
  install("ASICamera2", {"ASICloseCamera"});
  install("PlayerOneCamera", {"POAGetCameraCount"});
  install("qhyccd", {"GetQHYCCDChipInfo"});
  install("toupcam", {"Toupcam_EnumV2"});
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(error(),
            "ASICamera2: missing ASICloseCamera; PlayerOneCamera: missing POAGetCameraCount; "
            "qhyccd: missing GetQHYCCDChipInfo; toupcam: missing Toupcam_EnumV2");
}

#ifdef _WIN32
TEST_F(MixedScan, BadDirectoryDoesNotMatterOnceAllLibrariesAreLoaded) {
  for (const char* baseName : sdkNames) {
    directory.add(baseName);
  }
  const int count = oc.scan();
  EXPECT_GE(count, 8);
  oc.library_dir("\xff");
  EXPECT_EQ(oc.scan(), count);
}
#endif

TEST_F(MixedScan, CamerasOfAllFamiliesInTurnWithoutClosingInBetween) {
  std::vector<SimulatedSdk> sdks;
  for (const SdkFamily& family : sdkFamilies) {
    sdks.push_back(install(family.baseName));
    sdks.back().setCameras({smallCamera(family)});
  }
  ASSERT_EQ(oc.scan(), familyCount);
  for (int round = 0; round < 2; ++round) {
    for (std::size_t i = 0; i < sdkCount; ++i) {
      ASSERT_EQ(oc.open(static_cast<int>(i), 320, 202, 1, 0, 20000, 150, 5), 1)
          << sdkNames[i] << ": " << error();
      for (std::size_t other = 0; other < sdkCount; ++other) {
        const SimInvariants now = sdks[other].invariants();
        EXPECT_EQ(now.streamsRunning, other == i ? 1 : 0) << sdkNames[other];
        EXPECT_EQ(now.devicesOpen, other == i ? 1 : 0) << sdkNames[other];
      }
      sdks[i].advance_clock(100000);
      EXPECT_EQ(readFrame(), 320 * 202) << sdkNames[i] << ": " << error();
      EXPECT_EQ(oc.apply(10000, 200, 6), 1) << sdkNames[i] << ": " << error();
    }
  }
  oc.close();
  for (const SimulatedSdk& sdk : sdks) {
    expectClean(sdk);
  }
}

}  // namespace
}  // namespace orvane::testing
