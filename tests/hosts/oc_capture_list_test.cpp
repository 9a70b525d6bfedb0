// "oc_capture list", run as a program.
#include <nlohmann/json.hpp>

#include "oc_capture_test.hpp"
#include "session/causes.hpp"

namespace orvane::testing {

namespace {

using nlohmann::ordered_json;

class OcCaptureList : public OcCaptureTest {
 protected:
  // Expects this status and text on standard error. Returns standard output.
  std::string list(const char* more = "", const std::string& simulator = "", int status = 0,
                   const std::string& err = "") const {
    const ProgramResult result = runWithSdks("list", {more}, simulator);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.err, err);
    return result.out;
  }
};

TEST_F(OcCaptureList, ShowsEachCameraWithItsLimits) {
  sdks.add("ASICamera2");
  EXPECT_EQ(list(),
            "Libraries: ASICamera2\n"
            "Index  Name               Sensor       Bits  Pixel    Colour  Cooled  USB  Bins     "
            "Formats                 Gain        Longest exposure\n"
            "0      ZWO ASI120MC-S     1280 x 960   12    3.75 um  GRBG    no      3    1,2      "
            "raw8,rgb24,mono8,raw16  0 to 100    2000s\n"
            "1      ZWO ASI294MC Pro   4144 x 2822  14    4.63 um  RGGB    yes     3    1,2,3,4  "
            "raw8,rgb24,mono8,raw16  0 to 570    2000s\n"
            "2      ZWO ASI2600MM Pro  6248 x 4176  16    3.76 um  mono    yes     3    1,2,3,4  "
            "raw8,raw16              -25 to 700  2000s\n"
            "3      ZWO ASI290MM Mini  1936 x 1096  12    2.9 um   mono    no      -    1,2      "
            "raw8,raw16              0 to 600    2000s\n");
}

TEST_F(OcCaptureList, FindsTheCamerasOfAllMakers) {
  for (const char* name : sdkNames) {
    sdks.add(name);
  }
  const ordered_json document = ordered_json::parse(list("--json"));
  expectMembers(document, {{"libraries", sdkNames}, {"error", ""}});

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

TEST_F(OcCaptureList, SaysThatThereIsNothing) {
  EXPECT_EQ(list(), "Libraries: none\nNo cameras. There is no SDK in this directory. " +
                        cureOfNoSdk(sdks) + "\n");
  EXPECT_EQ(ordered_json::parse(list("--json")).dump(),
            R"({"libraries":[],"notLoaded":[],"error":"","explanation":"","cameras":[]})");
}

TEST_F(OcCaptureList, SaysWhatToDoWhenAnSdkSeesNoCamera) {
  sdks.add("ASICamera2");
  EXPECT_EQ(
      expectSuccess(runWithSdks("list", {}, "force ASIGetNumOfConnectedCameras 1 1 0")).out,
      "Libraries: ASICamera2\nNo cameras. Check the camera's cable and power, that its maker's "
      "driver and SDK are there, and that no other program uses it.\n");
}

TEST_F(OcCaptureList, TellsOfFilesThatCannotBeLoaded) {
  sdks.add("ASICamera2");
  sdks.addFile("toupcam", "this is a text file\n");
  const std::string file = utf8(sdks.file("toupcam").filename());
  EXPECT_PRED_FORMAT2(IsSubstring,
                      "Libraries: ASICamera2\nCould not be loaded: " + file +
                          ". To learn why, run: oc_capture doctor --sdk \"" + sdks.utf8() +
                          "\"\nIndex ",
                      list());
  EXPECT_EQ(ordered_json::parse(list("--json"))["notLoaded"], ordered_json{file});
}

TEST_F(OcCaptureList, TellsOfEachMakersFailureOnItsOwnLine) {
  sdks.add("ASICamera2");
  sdks.add("qhyccd", {"ScanQHYCCD"});
  const std::string both = "ASIGetCameraProperty: 5; qhyccd: missing ScanQHYCCD";
  const std::string err = errorText(both);
  EXPECT_EQ(err, errorText("ASIGetCameraProperty: 5") + errorText("qhyccd: missing ScanQHYCCD"));
  list("", "force ASIGetCameraProperty 1 1 5", 1, err);
}

TEST_F(OcCaptureList, TellsWhatFailedAndListsTheRest) {
  sdks.add("ASICamera2");
  const std::string third = "force ASIGetCameraProperty 3 1 5";
  const std::string err = errorText("ASIGetCameraProperty: 5");
  EXPECT_PRED_FORMAT2(IsSubstring, "\n1      ZWO ASI294MC Pro", list("", third, 1, err));

  const ordered_json document = ordered_json::parse(list("--json", third, 1, err));
  expectMembers(document, {{"error", "ASIGetCameraProperty: 5"},
                           {"explanation", host::explained("ASIGetCameraProperty: 5")}});
  EXPECT_EQ(document["cameras"].size(), 2U);
}

TEST_F(OcCaptureList, ShowsACameraWhosePixelSizeIsNotANumber) {
  sdks.add("ASICamera2");
  const std::string odd = "output ASIGetCameraProperty PixelSize 1 1 nan";
  EXPECT_PRED_FORMAT2(IsSubstring, "1280 x 960   12    -        GRBG", list("", odd));

  const ordered_json document = ordered_json::parse(list("--json", odd));
  EXPECT_TRUE(document["cameras"][0]["pixelSizeUm"].is_null());
  EXPECT_EQ(document["cameras"].size(), 4U);
}

TEST_F(OcCaptureList, ShowsACameraThatIsInUseElsewhereWithoutItsRanges) {
  sdks.add("ASICamera2");
  EXPECT_PRED_FORMAT2(IsSubstring, "raw16  -           -\n1 ",
                      list("", "force ASIOpenCamera 1 1 16"));
}

TEST_F(OcCaptureList, ShowsTheModelsOfSimulatedSdks) {
  sdks.add("qhyccd");
  sdks.add("toupcam");
  const std::string text = list("--cabinet");
  EXPECT_EQ(text.substr(0, text.find('\n')),
            "Maker    Name                        Sensor         "
            "Remarks");
  for (const char* line :
       {"QHYCCD   QHY268M                     6280 x 4210    mono, cooled",
        "QHYCCD   QHY174M                     1920 x 1200    mono, cooled, refuses bits before "
        "size at bin 2",
        "ToupTek  SkyRaider2.3(USB2.0)        1920 x 1200    GRBG, USB 2, no black level",
        "ToupTek  SkyRaider440DSM             748 x 578      mono, USB 2, no depth option"}) {
    EXPECT_PRED_FORMAT2(IsSubstring, std::string("\n") + line + "\n", text);
  }
  const ordered_json models = ordered_json::parse(list("--cabinet --json"))["models"];
  EXPECT_EQ(models.at(0).dump(), R"({"maker":"QHYCCD","name":"IC8300-M","sensor":"3584 x 2576",)"
                                 R"("remarks":"mono, cooled, USB 2"})");
}

TEST_F(OcCaptureList, TellsThatNoSdkIsSimulated) {
  EXPECT_EQ(list("--cabinet", "", 1,
                 "oc_capture: No simulated SDK is in \"" + utf8(sdks.path()) + "\".\n"),
            "");
}

TEST_F(OcCaptureList, FindsSdksInADirectoryOfAnyName) {
  sdks.add("ASICamera2");
  const auto directory = scratch.file("caf\u00e9 \U0001F52D");
  std::filesystem::copy(sdks.path(), directory);
  EXPECT_PRED_FORMAT2(IsSubstring, "ZWO ASI120MC-S",
                      expectSuccess(run({"list --sdk", directory}, "")).out);
  const std::string examined = expectSuccess(run({"doctor --sdk", directory}, "")).out;
  EXPECT_TRUE(examined.starts_with("ZWO ASI: healthy\n  File          " +
                                   utf8(directory / sdks.file("ASICamera2").filename()) + "\n"))
      << examined;
}

}  // namespace

}  // namespace orvane::testing
