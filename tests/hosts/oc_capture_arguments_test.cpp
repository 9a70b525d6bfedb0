// oc_capture's arguments: every wrong one gets one clear sentence and exit status 2.
#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

struct WrongArguments {
  const char* name;
  std::vector<std::string> arguments;
  std::string message;
};

void PrintTo(const WrongArguments& wrong, std::ostream* stream) {
  *stream << wrong.name;
}

std::string caseName(const ::testing::TestParamInfo<WrongArguments>& test) {
  return test.param.name;
}

void expectRefusal(const ProgramResult& result, const std::string& message) {
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "oc_capture: " + message + "\n");
}

// Wrong by themselves.
class WrongCommandLine : public OcCaptureTest,
                         public ::testing::WithParamInterface<WrongArguments> {};

TEST_P(WrongCommandLine, GetsOneSentence) {
  expectRefusal(run(GetParam().arguments), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, WrongCommandLine,
    ::testing::Values(
        WrongArguments{
            "Nothing", {}, "Say what to do: list, record, snap, bench, watch, play or doctor."},
        WrongArguments{"UnknownCommand",
                       {"dance"},
                       "Say what to do: list, record, snap, bench, watch, play or doctor."},
        WrongArguments{"ListWithoutSdk", {"list"}, "--sdk is required."},
        WrongArguments{"DoctorWithoutSdk", {"doctor"}, "--sdk is required."},
        WrongArguments{"ListWithMore",
                       {"list", "--sdk", ".", "more"},
                       "The following argument was not expected: more."},
        WrongArguments{"UnknownOption",
                       {"list", "--sdk", ".", "--xml"},
                       "The following argument was not expected: --xml."},
        WrongArguments{"SdkWithoutValue", {"list", "--sdk"}, "--sdk needs one value."},
        WrongArguments{
            "RecordWithoutOut", {"record", "--sdk", ".", "--camera", "0"}, "--out is required."},
        WrongArguments{"RecordWithoutCamera",
                       {"record", "--sdk", ".", "--out", "a.ser"},
                       "--camera is required."},
        WrongArguments{
            "SnapWithoutOut", {"snap", "--sdk", ".", "--camera", "0"}, "--out is required."},
        WrongArguments{"SnapEnding",
                       {"snap", "--sdk", ".", "--camera", "0", "--out", "a.jpg"},
                       "--out needs a file name that ends in .png, .fits or .fit, not "
                       "\"a.jpg\"."},
        WrongArguments{"SnapDirectory",
                       {"snap", "--sdk", ".", "--camera", "0", "--out", "missing/a.png"},
                       "There is no directory \"missing\"."},
        WrongArguments{"BenchWithoutSdk", {"bench"}, "--sdk is required."},
        WrongArguments{"BenchSeconds",
                       {"bench", "--sdk", ".", "--seconds", "0"},
                       "--seconds needs a number of seconds above 0, such as 30 or 1.5, not "
                       "\"0\"."},
        WrongArguments{"BenchEnding",
                       {"bench", "--sdk", ".", "--out", "a.svg"},
                       "--out needs a file name that ends in .png, not \"a.svg\"."},
        WrongArguments{
            "BenchSdk", {"bench", "--sdk", "missing"}, "There is no directory \"missing\"."},
        WrongArguments{"WatchWithoutCamera", {"watch", "--sdk", "."}, "--camera is required."},
        WrongArguments{"WatchFrames",
                       {"watch", "--sdk", ".", "--camera", "0", "--frames", "-1"},
                       "--frames needs a whole number from 1 to 2147483647, not \"-1\"."},
        WrongArguments{"WatchFramesAndSeconds",
                       {"watch", "--sdk", ".", "--camera", "0", "--frames", "1", "--seconds", "1"},
                       "--frames and --seconds cannot be given together."},
        WrongArguments{"WatchEnding",
                       {"watch", "--sdk", ".", "--camera", "0", "--out", "plot"},
                       "--out needs a file name that ends in .png, not \"plot\"."},
        WrongArguments{"PlayWithoutFile", {"play"}, "FILE.ser is required."},
        WrongArguments{"PlayMissing", {"play", "missing.ser"}, "There is no file \"missing.ser\"."},
        WrongArguments{"PlayBayer",
                       {"play", "missing.ser", "--bayer", "RGB"},
                       "--bayer needs RGGB, GRBG, GBRG, BGGR or none, not \"RGB\"."},
        WrongArguments{"PlayEnding",
                       {"play", "missing.ser", "--out", "sheet.jpg"},
                       "--out needs a file name that ends in .png, not \"sheet.jpg\"."},
        WrongArguments{"TwoCommands",
                       {"list", "--sdk", ".", "record"},
                       "The following argument was not expected: record."}),
    caseName);

// Wrong whatever the camera is: found before any SDK is loaded.
class WrongRecording : public OcCaptureTest,
                       public ::testing::WithParamInterface<WrongArguments> {};

TEST_P(WrongRecording, GetsOneSentence) {
  expectRefusal(run(recordArguments(GetParam().arguments)), GetParam().message);
  EXPECT_FALSE(std::filesystem::exists(recording()));
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, WrongRecording,
    ::testing::Values(
        WrongArguments{"Width",
                       {"--width", "wide"},
                       "--width needs a whole number from 1 to 2147483647, not \"wide\"."},
        WrongArguments{"Height",
                       {"--height", "0"},
                       "--height needs a whole number from 1 to 2147483647, not \"0\"."},
        WrongArguments{"Bin",
                       {"--bin", "2x2"},
                       "--bin needs a whole number from 1 to 2147483647, not \"2x2\"."},
        WrongArguments{"Format",
                       {"--format", "raw12"},
                       "--format needs raw8, raw16, rgb24 or mono8, not \"raw12\"."},
        WrongArguments{"ExposureWithoutUnit",
                       {"--exposure", "20"},
                       "--exposure needs a unit: 20us, 20ms or 20s."},
        WrongArguments{"ExposureNegative",
                       {"--exposure", "-20ms"},
                       "--exposure needs a duration such as 500us, 20ms or 1.5s, not \"-20ms\"."},
        WrongArguments{"ExposureTooLong",
                       {"--exposure", "2147483648us"},
                       "--exposure can be 2147483647us at most."},
        WrongArguments{"Gain",
                       {"--gain", "high"},
                       "--gain needs a whole number from -2147483648 to 2147483647, not \"high\"."},
        WrongArguments{"Offset",
                       {"--offset", "1.5"},
                       "--offset needs a whole number from -2147483648 to 2147483647, not "
                       "\"1.5\"."},
        WrongArguments{"Frames",
                       {"--frames", "0"},
                       "--frames needs a whole number from 1 to 2147483647, not \"0\"."},
        WrongArguments{"FramesEmpty",
                       {"--frames", ""},
                       "--frames needs a whole number from 1 to 2147483647, not \"\"."},
        WrongArguments{"Seconds",
                       {"--seconds", "5min"},
                       "--seconds needs a number of seconds above 0, such as 30 or 1.5, not "
                       "\"5min\"."},
        WrongArguments{"FramesAndSeconds",
                       {"--frames", "5", "--seconds", "5"},
                       "--frames and --seconds cannot be given together."},
        WrongArguments{"Discard",
                       {"--discard", "-1"},
                       "--discard needs a whole number from 0 to 2147483647, not \"-1\"."},
        WrongArguments{"Bayer",
                       {"--bayer", "RGBG"},
                       "--bayer needs RGGB, GRBG, GBRG, BGGR or none, not \"RGBG\"."},
        WrongArguments{"Memory",
                       {"--memory", "0"},
                       "--memory needs a whole number from 1 to 1048576, not \"0\"."},
        WrongArguments{"Ending", {"--quiet", "--flip=maybe"}, "Could not convert: --flip = maybe."},
        WrongArguments{"CameraTwice", {"--camera", "1"}, "--camera needs one value."}),
    caseName);

// Wrong for the camera: a ZWO ASI120MC-S of 1280 x 960 pixels.
class WrongForTheCamera : public OcCaptureTest,
                          public ::testing::WithParamInterface<WrongArguments> {};

TEST_P(WrongForTheCamera, GetsOneSentence) {
  sdks.add("ASICamera2");
  expectRefusal(run(recordArguments(GetParam().arguments)), GetParam().message);
  EXPECT_FALSE(std::filesystem::exists(recording()));
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, WrongForTheCamera,
    ::testing::Values(
        WrongArguments{
            "Width", {"--width", "1281"}, "--width can be 1280 at most with ZWO ASI120MC-S."},
        WrongArguments{
            "Height", {"--height", "961"}, "--height can be 960 at most with ZWO ASI120MC-S."},
        WrongArguments{"Bin", {"--bin", "3"}, "ZWO ASI120MC-S has no bin 3; it offers 1, 2."},
        WrongArguments{
            "GainBelow", {"--gain", "-1"}, "--gain can be 0 to 100 with ZWO ASI120MC-S."},
        WrongArguments{
            "GainAbove", {"--gain", "101"}, "--gain can be 0 to 100 with ZWO ASI120MC-S."},
        WrongArguments{"SwapOfRaw", {"--swap-rb"}, "--swap-rb needs frames in rgb24."},
        WrongArguments{"BayerOfColours",
                       {"--format", "rgb24", "--bayer", "RGGB"},
                       "--bayer needs frames in raw8 or raw16."},
        WrongArguments{"Exposure",
                       {"--exposure", "1001s"},
                       "--exposure can be 1000s at most with ZWO ASI120MC-S."}),
    caseName);

class OcCaptureArguments : public OcCaptureTest {};

TEST_F(OcCaptureArguments, HelpIsNoError) {
  for (const auto& arguments : std::vector<std::vector<std::string>>{{"--help"},
                                                                     {"-h"},
                                                                     {"list", "--help"},
                                                                     {"record", "--help"},
                                                                     {"play", "-h"},
                                                                     {"doctor", "--help"}}) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("Usage: oc_capture"), std::string::npos) << result.out;
    EXPECT_EQ(result.err, "");
  }
}

TEST_F(OcCaptureArguments, AFormatThatAMonoCameraLacks) {
  sdks.add("ASICamera2");
  expectRefusal(run(recordArguments({"--format", "rgb24"}, "ASI2600MM")),
                "ZWO ASI2600MM Pro has no format rgb24; it offers raw8, raw16.");
}

TEST_F(OcCaptureArguments, ANameThatFitsSeveralCameras) {
  sdks.add("ASICamera2");
  expectRefusal(run(recordArguments({}, "pro")),
                "More than one camera fits \"pro\": 1 (ZWO ASI294MC Pro), 2 (ZWO ASI2600MM Pro); "
                "give the index or more of the name.");
}

TEST_F(OcCaptureArguments, ANameThatFitsNone) {
  sdks.add("ASICamera2");
  expectRefusal(run(recordArguments({}, "Webcam")),
                "No camera fits \"Webcam\"; there are 0 (ZWO ASI120MC-S), 1 (ZWO ASI294MC Pro), 2 "
                "(ZWO ASI2600MM Pro), 3 (ZWO ASI290MM Mini).");
}

TEST_F(OcCaptureArguments, ADirectoryThatDoesNotExist) {
  const std::string missing = utf8(scratch.file("caf\u00e9"));
  expectRefusal(run({"list", "--sdk", missing}), "There is no directory \"" + missing + "\".");
  expectRefusal(run({"record", "--sdk", sdks.utf8(), "--camera", "0", "--out",
                     utf8(scratch.file("caf\u00e9") / "a.ser")}),
                "There is no directory \"" + missing + "\".");
}

TEST_F(OcCaptureArguments, AFileNameThatIsNoRecordings) {
  for (const char* name : {"recording", "recording.png", ".ser", "recording.ser2", ""}) {
    expectRefusal(run({"record", "--sdk", sdks.utf8(), "--camera", "0", "--out", name}),
                  std::string("--out needs a file name that ends in .ser, not \"") + name + "\".");
  }
}

TEST_F(OcCaptureArguments, ARecordingIsNotReplacedUnasked) {
  sdks.add("ASICamera2");
  const std::vector<std::string> small{"--width", "64", "--height", "48", "--frames", "2"};
  EXPECT_EQ(run(recordArguments(small)).status, 0);
  const std::string content = contentOf(recording());
  expectRefusal(
      run(recordArguments(small)),
      "\"" + utf8(recording()) + "\" exists already; name another file or add --overwrite.");
  EXPECT_EQ(contentOf(recording()), content);
  EXPECT_EQ(
      run(recordArguments({"--width", "64", "--height", "48", "--frames", "3", "--overwrite"}))
          .status,
      0);
  EXPECT_EQ(SerFile(recording()).frameCount, 3);
}

}  // namespace

}  // namespace orvane::testing
