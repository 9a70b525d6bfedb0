// oc_capture's arguments: every wrong one gets one clear sentence and exit status 2.
#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

struct WrongArguments {
  const char* name;
  const char* arguments;
  const char* message;
  const char* camera = "0";
};

void PrintTo(const WrongArguments& wrong, std::ostream* stream) {
  *stream << wrong.name;
}

std::string caseName(const ::testing::TestParamInfo<WrongArguments>& test) {
  return test.param.name;
}

class OcCaptureArguments : public OcCaptureTest {
 protected:
  // Status 2, the message and no recording.
  void expectRefusal(const ProgramResult& result, const std::string& message) const {
    expectFailure(result, 2, message);
    EXPECT_FALSE(std::filesystem::exists(recording()));
  }
};

// Wrong by themselves.
class WrongCommandLine : public OcCaptureArguments,
                         public ::testing::WithParamInterface<WrongArguments> {};

TEST_P(WrongCommandLine, GetsOneSentence) {
  expectRefusal(run({GetParam().arguments}), GetParam().message);
}

constexpr const char* allCommands =
    "Say what to do: list, record, snap, bench, watch, play, repair or doctor.";

constexpr WrongArguments wrongCommandLines[] = {
    {"Nothing", "", allCommands},
    {"UnknownCommand", "dance", allCommands},
    {"ListWithoutSdk", "list", "--sdk is required."},
    {"DoctorWithoutSdk", "doctor", "--sdk is required."},
    {"ListWithMore", "list --sdk . more", "The following argument was not expected: more."},
    {"UnknownOption", "list --sdk . --xml", "The following argument was not expected: --xml."},
    {"SdkWithoutValue", "list --sdk", "--sdk needs one value."},
    {"RecordWithoutOut", "record --sdk . --camera 0", "--out is required."},
    {"RecordWithoutCamera", "record --sdk . --out a.ser", "--camera is required."},
    {"SnapWithoutOut", "snap --sdk . --camera 0", "--out is required."},
    {"SnapEnding", "snap --sdk . --camera 0 --out a.jpg",
     R"(--out needs a file name that ends in .png, .fits or .fit, not "a.jpg".)"},
    {"SnapDirectory", "snap --sdk . --camera 0 --out missing/a.png",
     R"(There is no directory "missing".)"},
    {"BenchWithoutSdk", "bench", "--sdk is required."},
    {"BenchSeconds", "bench --sdk . --seconds 0",
     R"(--seconds needs a number of seconds above 0, such as 30 or 1.5, not "0".)"},
    {"BenchEnding", "bench --sdk . --out a.svg",
     R"(--out needs a file name that ends in .png, not "a.svg".)"},
    {"BenchSdk", "bench --sdk missing", R"(There is no directory "missing".)"},
    {"WatchWithoutCamera", "watch --sdk .", "--camera is required."},
    {"WatchFrames", "watch --sdk . --camera 0 --frames -1",
     R"(--frames needs a whole number from 1 to 2147483647, not "-1".)"},
    {"WatchEnding", "watch --sdk . --camera 0 --out plot",
     R"(--out needs a file name that ends in .png, not "plot".)"},
    {"PlayWithoutFile", "play", "FILE.ser is required."},
    {"PlayMissing", "play missing.ser", R"(There is no file "missing.ser".)"},
    {"PlayBayer", "play missing.ser --bayer RGB",
     R"(--bayer needs RGGB, GRBG, GBRG, BGGR or none, not "RGB".)"},
    {"PlayEnding", "play missing.ser --out sheet.jpg",
     R"(--out needs a file name that ends in .png, not "sheet.jpg".)"},
    {"TwoCommands", "list --sdk . record", "The following argument was not expected: record."}};

INSTANTIATE_TEST_SUITE_P(Arguments, WrongCommandLine, ::testing::ValuesIn(wrongCommandLines),
                         caseName);

// Wrong for every camera: found before any SDK is loaded.
class WrongRecording : public OcCaptureArguments,
                       public ::testing::WithParamInterface<WrongArguments> {};

TEST_P(WrongRecording, GetsOneSentence) {
  expectRefusal(record({GetParam().arguments}), GetParam().message);
}

constexpr WrongArguments wrongRecordings[] = {
    {"Width", "--width wide", R"(--width needs a whole number from 1 to 2147483647, not "wide".)"},
    {"Height", "--height 0", R"(--height needs a whole number from 1 to 2147483647, not "0".)"},
    {"Bin", "--bin 2x2", R"(--bin needs a whole number from 1 to 2147483647, not "2x2".)"},
    {"Format", "--format raw12", R"(--format needs raw8, raw16, rgb24 or mono8, not "raw12".)"},
    {"ExposureWithoutUnit", "--exposure 20", "--exposure needs a unit: 20us, 20ms or 20s."},
    {"ExposureNegative", "--exposure -20ms",
     R"(--exposure needs a duration such as 500us, 20ms or 1.5s, not "-20ms".)"},
    {"ExposureTooLong", "--exposure 2147483648us", "--exposure can be 2147483647us at most."},
    {"Gain", "--gain high",
     R"(--gain needs a whole number from -2147483648 to 2147483647, not "high".)"},
    {"Offset", "--offset 1.5",
     R"(--offset needs a whole number from -2147483648 to 2147483647, not "1.5".)"},
    {"Frames", "--frames 0", R"(--frames needs a whole number from 1 to 2147483647, not "0".)"},
    {"FramesEmpty", R"(--frames "")",
     R"(--frames needs a whole number from 1 to 2147483647, not "".)"},
    {"Seconds", "--seconds 5min",
     R"(--seconds needs a number of seconds above 0, such as 30 or 1.5, not "5min".)"},
    {"Region", "--region 640x480",
     R"(--region needs X,Y,WIDTHxHEIGHT, such as 320,240,640x480, not "640x480".)"},
    {"Discard", "--discard -1",
     R"(--discard needs a whole number from 0 to 2147483647, not "-1".)"},
    {"Bayer", "--bayer RGBG", R"(--bayer needs RGGB, GRBG, GBRG, BGGR or none, not "RGBG".)"},
    {"Memory", "--memory 0", R"(--memory needs a whole number from 1 to 1048576, not "0".)"},
    {"Ending", "--quiet --flip=maybe", "Could not convert: --flip = maybe."},
    {"CameraTwice", "--camera 1", "--camera needs one value."}};

INSTANTIATE_TEST_SUITE_P(Arguments, WrongRecording, ::testing::ValuesIn(wrongRecordings), caseName);

// Wrong for the camera, mostly a ZWO ASI120MC-S of 1280 x 960 pixels.
class WrongForTheCamera : public OcCaptureArguments,
                          public ::testing::WithParamInterface<WrongArguments> {};

TEST_P(WrongForTheCamera, GetsOneSentence) {
  sdks.add("ASICamera2");
  expectRefusal(record({GetParam().arguments}, stoppedClock, GetParam().camera),
                GetParam().message);
}

constexpr WrongArguments wrongForTheCamera[] = {
    {"Width", "--width 1281", "--width can be 1280 at most with ZWO ASI120MC-S."},
    {"Height", "--height 961", "--height can be 960 at most with ZWO ASI120MC-S."},
    {"Bin", "--bin 3", "ZWO ASI120MC-S has no bin 3; it offers 1, 2."},
    {"RegionOutside", "--region 641,0,640x480",
     "The region 640 x 480 at 641, 0 is not inside the frame of ZWO ASI120MC-S, 1280 x 960 with "
     "bin 1."},
    {"RegionOutsideBinned", "--bin 2 --region 0,1,640x480",
     "The region 640 x 480 at 0, 1 is not inside the frame of ZWO ASI120MC-S, 640 x 480 with bin "
     "2."},
    {"RegionAndWidth", "--region 0,0,640x480 --width 640",
     "--region cannot be given together with --width or --height."},
    {"GainBelow", "--gain -1", "--gain can be 0 to 100 with ZWO ASI120MC-S."},
    {"GainAbove", "--gain 101", "--gain can be 0 to 100 with ZWO ASI120MC-S."},
    {"SwapOfRaw", "--swap-rb", "--swap-rb needs frames in rgb24."},
    {"BayerOfColours", "--format rgb24 --bayer RGGB", "--bayer needs frames in raw8 or raw16."},
    {"Exposure", "--exposure 2001s", "--exposure can be 2000s at most with ZWO ASI120MC-S."},
    {"FormatOfMono", "--format rgb24",
     "ZWO ASI2600MM Pro has no format rgb24; it offers raw8, raw16.", "ASI2600MM"},
    {"NameThatFitsSeveral", "",
     "More than one camera fits \"pro\": 1 (ZWO ASI294MC Pro), 2 (ZWO ASI2600MM Pro); give the "
     "index or more of the name.",
     "pro"},
    {"NameThatFitsNone", "",
     "No camera fits \"Webcam\"; there are 0 (ZWO ASI120MC-S), 1 (ZWO ASI294MC Pro), 2 (ZWO "
     "ASI2600MM Pro), 3 (ZWO ASI290MM Mini).",
     "Webcam"}};

INSTANTIATE_TEST_SUITE_P(Arguments, WrongForTheCamera, ::testing::ValuesIn(wrongForTheCamera),
                         caseName);

TEST_F(OcCaptureArguments, HelpIsNoError) {
  for (const char* arguments :
       {"--help", "-h", "list --help", "record --help", "play -h", "doctor --help"}) {
    const ProgramResult result = run({arguments});
    EXPECT_EQ(result.status, 0);
    EXPECT_PRED_FORMAT2(IsSubstring, "Usage: oc_capture", result.out);
    EXPECT_EQ(result.err, "");
  }
}

TEST_F(OcCaptureArguments, ADirectoryThatDoesNotExist) {
  const auto missing = scratch.file("caf\u00e9");
  const std::string message = "There is no directory \"" + utf8(missing) + "\".";
  expectRefusal(run({"list --sdk", missing}), message);
  expectRefusal(run({"doctor --sdk", missing}), message);
  expectRefusal(runWithSdks("record", {"--camera 0 --out", missing / "a.ser"}), message);
}

TEST_F(OcCaptureArguments, AFileNameThatIsNoRecordings) {
  for (const std::string name : {"recording", "recording.png", ".ser", "recording.ser2", ""}) {
    expectRefusal(runWithSdks("record", {"--camera 0 --out", name}),
                  "--out needs a file name that ends in .ser, not \"" + name + "\".");
  }
}

TEST_F(OcCaptureArguments, ARecordingIsNotReplacedUnasked) {
  sdks.add("ASICamera2");
  expectSuccess(record({"--width 64 --height 48 --frames 2"}));
  const std::string content = contentOf(recording());
  expectFailure(
      record({"--width 64 --height 48 --frames 2"}), 2,
      "\"" + utf8(recording()) + "\" exists already; name another file or add --overwrite.");
  EXPECT_EQ(contentOf(recording()), content);
  expectSuccess(record({"--width 64 --height 48 --frames 3 --overwrite"}));
  EXPECT_EQ(SerFile(recording()).frameCount, 3);
}

}  // namespace

}  // namespace orvane::testing
