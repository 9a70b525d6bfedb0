// The text commands of the simulated SDKs: what they accept, and what they say of a wrong one.
#include <algorithm>

#include "library/library_test.hpp"

namespace orvane::testing {
namespace {

class SimulatorCommands : public LibraryTest, public ::testing::WithParamInterface<const char*> {
 protected:
  // Runs a command and expects that it is wrong. Returns what the SDK says.
  static std::string refused(const SimulatedSdk& sdk, const std::string& command) {
    ::testing::internal::CaptureStderr();
    const int result = sdk.command(command.c_str());
    static_cast<void>(std::fflush(nullptr));
    std::string said = ::testing::internal::GetCapturedStderr();
    std::erase(said, '\r');
    EXPECT_EQ(result, 0) << command;
    return said;
  }

  // The same, where the SDK says that this command is wrong for this reason.
  static void expectRefused(const SimulatedSdk& sdk, const std::string& commands,
                            const std::string& wrong, const std::string& reason) {
    EXPECT_EQ(refused(sdk, commands), "ASICamera2: \"" + wrong + "\": " + reason + "\n");
  }
  static void expectRefused(const SimulatedSdk& sdk, const std::string& command,
                            const std::string& reason) {
    expectRefused(sdk, command, command, reason);
  }
  static std::string unknownFunction(const std::string& sdk, const std::string& command,
                                     const std::string& function) {
    return sdk + ": \"" + command + "\": unknown function \"" + function + "\" of " + sdk + "\n";
  }
};

TEST_P(SimulatorCommands, NameTheFunctionsOfTheirSdk) {
  const std::string own = GetParam();
  const SimulatedSdk sdk = install(own);
  for (const char* const name : sdkNames) {
    EXPECT_FALSE(functionsOf(name).empty());
    for (const std::string& function : functionsOf(name)) {
      const std::string force = "force " + function + " 9 1 0";
      if (name == own) {
        EXPECT_EQ(sdk.command(force.c_str()), 1) << function;
      } else {
        EXPECT_EQ(refused(sdk, force), unknownFunction(own, force, function));
      }
      EXPECT_EQ(sdk.command(("sdk *; " + force).c_str()), 1) << function;
    }
    EXPECT_EQ(sdk.command(("sdk " + std::string(name)).c_str()), 1);
  }
}

INSTANTIATE_TEST_SUITE_P(Makers, SimulatorCommands, ::testing::ValuesIn(sdkNames),
                         [](const auto& test) { return test.param; });

TEST_F(SimulatorCommands, WrongOnesAreToldWithTheReason) {
  const SimulatedSdk sdk = install("ASICamera2");
  expectRefused(sdk, "focre ASIOpenCamera 1 1 16", "unknown command \"focre\"");
  expectRefused(sdk, "force ASIOpenCamera 1 16",
                "it is written \"force FUNCTION NTH TIMES RESULT\"");
  expectRefused(sdk, "force ASIOpenCamera 1 1 sixteen",
                "it is written \"force FUNCTION NTH TIMES RESULT\"");
  expectRefused(sdk, "force ASIOpenCamera 1 1 16 17",
                "it is written \"force FUNCTION NTH TIMES RESULT\"");
  expectRefused(sdk, "output ASIGetNumOfControls count 1 1",
                "it is written \"output FUNCTION OUTPUT NTH TIMES VALUE\"");
  expectRefused(sdk, "throw ASIOpenCamera 1 1 stanard usb lost",
                "unknown kind \"stanard\" of exception");
  expectRefused(sdk, "throw ASIOpenCamera 1 1",
                "it is written \"throw FUNCTION NTH TIMES KIND [TEXT]\"");
  expectRefused(sdk, "hang ASIOpenCamera", "it is written \"hang FUNCTION NTH\"");
  expectRefused(sdk, "crash ASIOpenCamera 1 1", "it is written \"crash FUNCTION NTH\"");
  expectRefused(sdk, "plug 0 ASIOpenCamera", "it is written \"plug INDEX FUNCTION NTH\"");
  expectRefused(sdk, "clock stoped", "the clock can be stopped or running");
  expectRefused(sdk, "timing slow", "the timing can be real or quick");
  expectRefused(sdk, "light out", "the light can be off or on");
  expectRefused(sdk, "unplug 0 ASIOpenCamera 0 quietly",
                "a camera can be unplugged silently, or without a further word");
  expectRefused(sdk, "camera", "it is written \"camera MODEL\"");
  expectRefused(sdk, "camera ZWO ASI1", "unknown model \"ZWO ASI1\" of ASICamera2");
  expectRefused(sdk, "camera Mars-C", "unknown model \"Mars-C\" of ASICamera2");
  expectRefused(sdk, "sdk *; camera Mars-D", "camera Mars-D", "unknown model \"Mars-D\"");
  expectRefused(sdk, "keep 4 9 1", "there is no camera 4");
  expectRefused(sdk, "seed one", "it is written \"seed N\"");
  expectRefused(sdk, "scene", "it is written \"scene FILE\"");
  expectRefused(sdk, "scene no such file", "the file cannot be played: it cannot be opened");
  expectRefused(sdk, "log " + directory.utf8(), "the file cannot be opened");
  expectRefused(sdk, "sdk ASICamera", "unknown SDK \"ASICamera\"");
  expectRefused(sdk, "sdk", "unknown SDK \"\"");
}

TEST_F(SimulatorCommands, NamesAreCheckedInEveryCommand) {
  const SimulatedSdk sdk = install("ASICamera2");
  const std::string reason = "unknown function \"ASIOpenCamra\" of ASICamera2";
  for (const char* command :
       {"force ASIOpenCamra 1 1 16", "output ASIOpenCamra result 1 1 16",
        "throw ASIOpenCamra 1 1 number", "hang ASIOpenCamra 1", "crash ASIOpenCamra 1",
        "unplug 0 ASIOpenCamra 1", "unplug 0 ASIOpenCamra 0", "plug 0 ASIOpenCamra 1"}) {
    expectRefused(sdk, command, reason);
    expectRefused(sdk, std::string("sdk *; ") + command, command,
                  "unknown function \"ASIOpenCamra\"");
  }
  expectRefused(sdk, "output ASIGetNumOfControls cuont 1 1 5",
                "unknown output \"cuont\" of ASIGetNumOfControls, which has result count");
  expectRefused(sdk, "output ASIOpenCamera count 1 1 5",
                "unknown output \"count\" of ASIOpenCamera, which has result");
  expectRefused(sdk, "unplug 4 ASIOpenCamera 1", "there is no camera 4");
  expectRefused(sdk, "unplug -1 ASIOpenCamera 0", "there is no camera -1");
  expectRefused(sdk, "plug 4", "there is no camera 4");
  EXPECT_EQ(sdk.command("sdk *; plug 4"), 1) << "another SDK may have so many";
}

TEST_F(SimulatorCommands, AFunctionWithoutAResultHasNoSuchOutput) {
  const SimulatedSdk sdk = install("toupcam");
  EXPECT_EQ(refused(sdk, "output Toupcam_Close result 1 1 0"),
            "toupcam: \"output Toupcam_Close result 1 1 0\": unknown output \"result\" of "
            "Toupcam_Close, which has none\n");
  EXPECT_EQ(sdk.command("output Toupcam_Stop result 9 1 0"), 1);
}

TEST_F(SimulatorCommands, OnlyOneSdkKeepsSettingsAndGetsDamagedFrames) {
  const SimulatedSdk sdk = install("qhyccd");
  EXPECT_EQ(refused(sdk, "keep 0 9 1"), "qhyccd: \"keep 0 9 1\": qhyccd keeps no settings\n");
  EXPECT_EQ(refused(sdk, "damage 1 1 3"),
            "qhyccd: \"damage 1 1 3\": unknown function \"ASIGetVideoData\" of qhyccd\n");
  EXPECT_EQ(sdk.command("sdk *; keep 0 9 1; damage 1 1 3"), 1);
}

TEST_F(SimulatorCommands, ModelsReplaceTheDefaultCamerasOfTheirSdk) {
  const SimulatedSdk asi = install("ASICamera2");
  directory.add("PlayerOneCamera");
  const auto names = [this] {
    std::string text;
    for (int camera = 0, count = oc.scan(); camera < count; ++camera) {
      text += infoValue(camera, "name");
    }
    return text;
  };
  const std::string others = "\"Mars-C\"\"Neptune-C II\"\"Poseidon-M Pro\"";
  EXPECT_EQ(asi.command("sdk *; camera ZWO ASI120MM; camera Uranus-C"), 1);
  EXPECT_EQ(names(), "\"ZWO ASI120MM\"" + others);
  EXPECT_EQ(asi.command("camera ZWO ASI174MC; camera ZWO ASI120MM"), 1);
  EXPECT_EQ(names(), "\"ZWO ASI120MM\"\"ZWO ASI174MC\"\"ZWO ASI120MM\"" + others);
  ASSERT_EQ(oc.open(2, 1280, 960, 1, 0, 1000, 0, 0), 1) << "the same model again is another camera";
  EXPECT_EQ(asi.command("camera ZWO ASI174MM"), 1) << "an open camera is not disturbed";
  EXPECT_EQ(readFrame(), 1280 * 960);
  oc.close();
  asi.reset();
  EXPECT_EQ(oc.scan(), 4 + 3);
}

TEST_F(SimulatorCommands, TheModelsOfAnSdkCanBeReadByName) {
  const SimulatedSdk sdk = install("qhyccd");
  SimCamera camera{};
  EXPECT_EQ(sdk.camera_by_name("QHY268", &camera), 0);
  EXPECT_EQ(sdk.camera_by_name("Mars-C", &camera), 0) << "of another SDK";
  EXPECT_EQ(sdk.camera_by_name(nullptr, &camera), 0);
  EXPECT_EQ(sdk.camera_by_name("QHY268M", nullptr), 0);
  EXPECT_EQ(camera.width, 0);
  ASSERT_EQ(sdk.camera_by_name("QHY268M", &camera), 1);
  EXPECT_EQ(camera.width, 6280);
  EXPECT_EQ(camera.bitDepth, 16);
  EXPECT_EQ(camera.reportedBitDepth, 8);
}

TEST_F(SimulatorCommands, ThoseForAnotherSdkAreLeftToIt) {
  const SimulatedSdk sdk = install("ASICamera2");
  EXPECT_EQ(sdk.command("sdk toupcam; focre it; scene nothing; output ASIOpenCamra a 1 1 1"), 1);
  expectRefused(sdk, "sdk toupcam; focre; sdk ASICamera2; focre", "focre",
                "unknown command \"focre\"");
}

TEST_F(SimulatorCommands, ThoseBeforeAWrongOneAreRunAndThoseAfterItAreNot) {
  const SimulatedSdk sdk = install("ASICamera2");
  expectRefused(sdk,
                "force ASIGetNumOfConnectedCameras 1 1 0; focre; force ASIGetCameraProperty 1 1 4",
                "focre", "unknown command \"focre\"");
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(oc.scan(), 4);
  EXPECT_EQ(error(), "");
}

}  // namespace
}  // namespace orvane::testing
