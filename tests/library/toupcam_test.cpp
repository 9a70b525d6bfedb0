// ToupTek cameras: what differs from the other families. each_family_test.cpp has the rest.
#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

class ToupTek : public FamilyTest {
 protected:
  ToupTek() : FamilyTest("toupcam") {}

  void reportPattern(std::uint32_t fourCc) const {
    onlyOutput("Toupcam_get_RawFormat", "fourCc", fourCc);
  }
};

TEST_F(ToupTek, BayerPatternsOfAllFourTexts) {
  for (const auto& [text, bayer] :
       {std::pair{"RGGB", "8"}, {"BGGR", "11"}, {"GRBG", "9"}, {"GBRG", "10"}}) {
    std::uint32_t fourCc = 0;
    std::memcpy(&fourCc, text, sizeof fourCc);
    reportPattern(fourCc);
    EXPECT_EQ(oc.scan(), 1) << error();
    EXPECT_EQ(infoValue(0, "bayer"), bayer);
  }
}

TEST_F(ToupTek, ColourCameraWithAnotherBayerPatternIsClosedAndFailsTheScan) {
  sdk.setCameras({small, secondCamera()});
  for (const std::uint32_t code : {0U, 0x59595959U, 0xFFFFFFFFU}) {
    sdk.takeLog();
    reportPattern(code);
    EXPECT_EQ(oc.scan(), 0);
    EXPECT_EQ(error(), "Unsupported ToupTek raw mosaic");
    const std::string log = sdk.takeLog();
    EXPECT_NE(log.find("Toupcam_Close("), std::string::npos);
    EXPECT_EQ(log.find("\"other\") ="), std::string::npos)
        << "the scan must not examine the others";
    expectClean(sdk);
  }
}

TEST_F(ToupTek, MonochromeCameraHasNoBayerCodeWhateverItReports) {
  small.isColor = 0;
  sdk.setCameras({small});
  for (const std::uint32_t code : {0x42474752U, 0U}) {
    reportPattern(code);
    EXPECT_EQ(oc.scan(), 1);
    EXPECT_EQ(values({"bayer", "isColor"}), "0 false");
    EXPECT_EQ(error(), "");
  }
}

TEST_F(ToupTek, FailingRawFormatEndsTheScanForMonochromeCamerasToo) {
  small.isColor = 0;
  sdk.setCameras({small});
  sdk.forceResult("Toupcam_get_RawFormat", -2147467259);
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(error(), "Toupcam_get_RawFormat: -2147467259");
  expectClean(sdk);
}

TEST_F(ToupTek, BitDepthDecidesTheFormats) {
  const std::pair<std::int64_t, const char*> depths[] = {
      {8, "[0]"}, {9, "[0,1]"}, {16, "[0,1]"}, {0, "[0]"}, {-2147467259, "[0]"}};
  for (const auto& [depth, formats] : depths) {
    onlyResult("Toupcam_get_MaxBitDepth", depth);
    EXPECT_EQ(oc.scan(), 1);
    EXPECT_EQ(values({"bitDepth", "formats"}), std::to_string(depth) + " " + formats);
  }
}

TEST_F(ToupTek, EveryFlagIsABitOfItsOwn) {
  constexpr std::uint32_t mono = 0x10;
  constexpr std::uint32_t usb3 = 0x40;
  constexpr std::uint32_t cooled = 0x80;
  constexpr std::uint32_t usb2Port = 0x100;
  for (const std::uint32_t flag : {mono, usb3, cooled, usb2Port}) {
    for (const std::uint32_t flags : {flag, ~flag}) {
      onlyOutput("Toupcam_EnumV2", "flag", flags);
      EXPECT_EQ(oc.scan(), 1);
      const auto text = [&](std::uint32_t bit) { return (flags & bit) != 0 ? "true" : "false"; };
      EXPECT_EQ(infoValue(0, "isUsb3Camera"), text(usb3)) << flags;
      const bool isUsb3Host = (flags & (usb3 | usb2Port)) == usb3;
      EXPECT_EQ(infoValue(0, "isUsb3Host"), isUsb3Host ? "true" : "false") << flags;
      EXPECT_EQ(infoValue(0, "isCooled"), text(cooled)) << flags;
      EXPECT_EQ(infoValue(0, "isColor"), (flags & mono) != 0 ? "false" : "true") << flags;
    }
  }
}

TEST_F(ToupTek, RangesAreUnsigned) {
  sdk.forceOutput("Toupcam_get_ExpTimeRange", "nMax", 4294967295.0);
  sdk.forceOutput("Toupcam_get_ExpoAGainRange", "nMin", 40000);
  sdk.forceOutput("Toupcam_get_ExpoAGainRange", "nMax", 65535);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(limits(), "4294967295 40000 65535");
}

TEST_F(ToupTek, PixelSizeIsWidenedFromSinglePrecision) {
  small.pixelSizeUm = 2.4;
  rescan();
  EXPECT_EQ(infoValue(0, "pixelSizeUm"), "2.4");
}

TEST_F(ToupTek, EntryWithoutAModelIsSkipped) {
  sdk.setCameras({small, secondCamera()});
  sdk.forceOutput("Toupcam_EnumV2", "model", 0);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "name"), "\"second\"");
  EXPECT_EQ(error(), "");
}

TEST_F(ToupTek, OnlyTheFirst128EntriesAreExamined) {
  sdk.setCameras(manyCameras(130));
  EXPECT_EQ(oc.scan(), 128);
  EXPECT_EQ(error(), "");
  sdk.setCameras({small});
  sdk.forceOutput("Toupcam_EnumV2", "result", 4294967295.0);
  EXPECT_EQ(oc.scan(), 1) << "the other entries have no model";
}

TEST_F(ToupTek, DisplayNamesOfOtherScripts) {
  const std::vector<std::string> names = {"caméra", "天文相机", "🔭 scope", std::string(63, 'n')};
  for (const std::string& name : names) {
    setText(small.name, name);
    rescan();
    EXPECT_EQ(infoValue(0, "name"), '"' + name + '"');
  }
}

TEST_F(ToupTek, IdWithoutANulIsReadToTheEndOfItsField) {
  setText(small.key, std::string(64, 'k'));
  rescan();
  EXPECT_EQ(open(), 1) << error();
  EXPECT_EQ(sdk.takeCallsOf("Toupcam_Open"),
            "Toupcam_Open(\"" + std::string(64, 'k') + "\") = h2\n");
}

#ifdef _WIN32
TEST_F(ToupTek, LoneSurrogateBecomesTheReplacementCharacter) {
  setText(small.name, "a\xed\xa0\x80z");
  rescan();
  EXPECT_EQ(infoValue(0, "name"), "\"a\xef\xbf\xbdz\"");
}
#endif

TEST_F(ToupTek, SizeThatTheSdkReportsBackIsUsed) {
  scan();
  sdk.forceOutput("Toupcam_get_FinalSize", "width", 160);
  sdk.forceOutput("Toupcam_get_FinalSize", "height", 100);
  ASSERT_EQ(open(), 1);
  EXPECT_EQ(oc.width(), 160);
  EXPECT_EQ(oc.height(), 100);
  EXPECT_EQ(oc.buffer_size(), 160 * 100);
}

TEST_F(ToupTek, OddRegionIsRefusedByTheSdk) {
  scan();
  expectOpenFailed(open(319, 202), "ToupTek ROI: -2147024809");
}

TEST_F(ToupTek, AnotherSizeIsAChangeOfGeometry) {
  openSmall();
  const std::pair<const char*, double> changes[] = {
      {"width", 318}, {"height", 200}, {"width", 0}, {"height", 4294967295.0}};
  for (const auto& [output, value] : changes) {
    onlyOutput("Toupcam_PullImageWithRowPitch", output, value);
    EXPECT_EQ(nextFrame(), -1);
    EXPECT_EQ(error(), "ToupTek frame geometry changed");
  }
  sdk.clear_faults();
  EXPECT_EQ(nextFrame(), 320 * 202) << "must still stream";
}

TEST_F(ToupTek, SizesStartAtZeroForASdkThatWritesNone) {
  openSmall();
  sdk.forceResult("Toupcam_PullImageWithRowPitch", 0);
  EXPECT_EQ(nextFrame(), -1);
  EXPECT_EQ(error(), "ToupTek frame geometry changed");
}

TEST_F(ToupTek, GainBelowZeroOrAbove65535FailsAfterTheExposureIsSet) {
  openSmall();
  for (const int bad : {-1, 65536, 2147483647, -2147483647 - 1}) {
    EXPECT_EQ(oc.apply(5000, bad, 7), 0);
    EXPECT_EQ(error(), "ToupTek gain out of range");
    const std::string log = sdk.takeLog();
    EXPECT_NE(log.find("Toupcam_put_ExpoTime(h2, 5000)"), std::string::npos) << log;
    EXPECT_EQ(log.find("Toupcam_put_ExpoAGain"), std::string::npos);
  }
}

TEST_F(ToupTek, Gains0And65535ArePassedOn) {
  openSmall();
  sdk.forceResult("Toupcam_put_ExpoAGain", 0);
  for (const int good : {0, 65535}) {
    EXPECT_EQ(oc.apply(5000, good, 7), 1) << error();
    EXPECT_EQ(sdk.takeCallsOf("Toupcam_put_ExpoAGain"),
              "Toupcam_put_ExpoAGain(h2, " + std::to_string(good) + ") = 0\n");
  }
}

TEST_F(ToupTek, BlackLevelIsPassedUnscaledAndANegativeOneToo) {
  openSmall(1);
  sdk.forceResult("Toupcam_put_Option", 0);
  EXPECT_EQ(oc.apply(5000, 200, -9), 1);
  EXPECT_EQ(sdk.takeCallsOf("Toupcam_put_Option"), "Toupcam_put_Option(h2, 21, -9) = 0\n");
}

}  // namespace
}  // namespace orvane::testing
