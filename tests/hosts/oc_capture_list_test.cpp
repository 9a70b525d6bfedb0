// "oc_capture list", run as a program.
#include <nlohmann/json.hpp>

#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

using nlohmann::ordered_json;

class OcCaptureList : public OcCaptureTest {
 protected:
  ProgramResult list(const std::string& simulator = "") const {
    return run({"list", "--sdk", sdks.utf8()}, simulator);
  }

  ProgramResult listJson(const std::string& simulator = "") const {
    return run({"list", "--json", "--sdk", sdks.utf8()}, simulator);
  }
};

TEST_F(OcCaptureList, ShowsEachCameraWithItsLimits) {
  sdks.add("ASICamera2");
  const ProgramResult result = list();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out,
            "Libraries: ASICamera2\n"
            "Index  Name               Sensor       Bits  Pixel    Colour  Cooled  USB  Bins     "
            "Formats                 Gain      Longest exposure\n"
            "0      ZWO ASI120MC-S     1280 x 960   12    3.75 um  GRBG    no      3    1,2      "
            "raw8,rgb24,raw16,mono8  0 to 100  1000s\n"
            "1      ZWO ASI294MC Pro   4144 x 2822  14    4.63 um  RGGB    yes     3    1,2,3,4  "
            "raw8,rgb24,raw16,mono8  0 to 570  2000s\n"
            "2      ZWO ASI2600MM Pro  6248 x 4176  16    3.76 um  mono    yes     3    1,2,3,4  "
            "raw8,raw16              0 to 700  2000s\n"
            "3      ZWO ASI290MM Mini  1936 x 1096  12    2.9 um   mono    no      -    1,2      "
            "raw8,raw16              0 to 600  1000s\n");
}

TEST_F(OcCaptureList, FindsTheCamerasOfAllMakers) {
  for (const char* name : sdkNames) {
    sdks.add(name);
  }
  const ProgramResult result = listJson();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  const ordered_json document = ordered_json::parse(result.out);
  EXPECT_EQ(document["libraries"], ordered_json(sdkNames));
  EXPECT_EQ(document["error"], "");

  // The library in this process tells the same about them.
  const LibraryUnderTest oc;
  oc.library_dir(sdks.utf8().c_str());
  const int count = oc.scan();
  ASSERT_EQ(document["cameras"].size(), static_cast<std::size_t>(count));
  EXPECT_GT(count, 4);
  for (int index = 0; index < count; ++index) {
    EXPECT_EQ(document["cameras"][static_cast<std::size_t>(index)].dump(),
              ordered_json::parse(oc.info(index)).dump());
  }
}

TEST_F(OcCaptureList, JsonHasThreeKeysInThisOrder) {
  const ProgramResult result = listJson();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(ordered_json::parse(result.out).dump(), R"({"libraries":[],"error":"","cameras":[]})");
}

TEST_F(OcCaptureList, SaysThatThereIsNothing) {
  const ProgramResult result = list();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "Libraries: none\nNo cameras.\n");
  EXPECT_EQ(result.err, "");
}

TEST_F(OcCaptureList, TellsWhatFailedAndListsTheRest) {
  sdks.add("ASICamera2");
  const std::string third = "force ASIGetCameraProperty 3 1 5";
  const ProgramResult text = list(third);
  EXPECT_EQ(text.status, 1);
  EXPECT_EQ(text.err, "oc_capture: ASIGetCameraProperty: 5\n");
  EXPECT_NE(text.out.find("\n1      ZWO ASI294MC Pro"), std::string::npos) << text.out;

  const ProgramResult json = listJson(third);
  EXPECT_EQ(json.status, 1);
  EXPECT_EQ(json.err, "oc_capture: ASIGetCameraProperty: 5\n");
  const ordered_json document = ordered_json::parse(json.out);
  EXPECT_EQ(document["error"], "ASIGetCameraProperty: 5");
  EXPECT_EQ(document["cameras"].size(), 2U);
}

TEST_F(OcCaptureList, ShowsACameraWhosePixelSizeIsNotANumber) {
  sdks.add("ASICamera2");
  const std::string odd = "output ASIGetCameraProperty PixelSize 1 1 nan";
  const ProgramResult text = list(odd);
  EXPECT_EQ(text.status, 0);
  EXPECT_NE(text.out.find("1280 x 960   12    -        GRBG"), std::string::npos) << text.out;

  const ordered_json document = ordered_json::parse(listJson(odd).out);
  EXPECT_TRUE(document["cameras"][0]["pixelSizeUm"].is_null());
  EXPECT_EQ(document["cameras"].size(), 4U);
}

TEST_F(OcCaptureList, ShowsACameraThatIsInUseElsewhereWithoutItsRanges) {
  sdks.add("ASICamera2");
  const ProgramResult result = list("force ASIOpenCamera 1 1 16");
  EXPECT_EQ(result.status, 0);
  EXPECT_NE(result.out.find("mono8  -         -\n1 "), std::string::npos) << result.out;
}

TEST_F(OcCaptureList, FindsSdksInADirectoryOfAnyName) {
  sdks.add("ASICamera2");
  const auto directory = scratch.file("caf\u00e9 \U0001F52D");
  std::filesystem::copy(sdks.path(), directory);
  const ProgramResult result = run({"list", "--sdk", utf8(directory)}, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_NE(result.out.find("ZWO ASI120MC-S"), std::string::npos) << result.out;
}

}  // namespace

}  // namespace orvane::testing
