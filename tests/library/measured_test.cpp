// What the makers' real SDKs were seen to do beyond their descriptions, and the simulated ones do,
// too. cabinet_test.cpp has what they say of each model.
#include <chrono>

#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

class Unplugged : public FamilyTest, public ::testing::WithParamInterface<SdkFamily> {
 protected:
  Unplugged() : FamilyTest(GetParam().baseName) {}

  static constexpr double roomTemperature = 18;  // within a degree

  // What the SDK reports as the temperature of the camera that was unplugged.
  static double lastTemperature() {
    const std::string sdk = GetParam().baseName;
    return sdk == "PlayerOneCamera" ? -300 : sdk == "qhyccd" ? -2176 : roomTemperature;
  }
};

TEST_P(Unplugged, SilentlyACameraSendsNoFramesAndNoErrors) {
  openSmall();
  EXPECT_EQ(nextFrame(), 320 * 202);
  EXPECT_NEAR(oc.temperature(), roomTemperature, 1);
  sdk.set_plugged(0, SIM_UNPLUGGED_SILENTLY);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(nextFrame(), 0);
  }
  EXPECT_EQ(oc.apply(5000, 150, 5), 1);
  EXPECT_NEAR(oc.temperature(), lastTemperature(), 1);
  sdk.set_plugged(0, SIM_PLUGGED);
  EXPECT_EQ(nextFrame(), 0) << "the open camera stays lost";
  EXPECT_EQ(error(), "");
  oc.close();
  sdk.set_plugged(0, SIM_UNPLUGGED_SILENTLY);
  EXPECT_EQ(oc.scan(), 0);
  sdk.set_plugged(0, SIM_PLUGGED);
  openSmall();
  EXPECT_EQ(nextFrame(), 320 * 202);
  EXPECT_NEAR(oc.temperature(), roomTemperature, 1);
}

TEST_P(Unplugged, WithErrorsACameraFailsAsTheMakerDescribes) {
  openSmall();
  sdk.set_plugged(0, SIM_UNPLUGGED);
  EXPECT_EQ(nextFrame(), GetParam().baseName == std::string("qhyccd") ? 0 : -1);
  EXPECT_EQ(oc.apply(5000, 150, 5), 0);
}

INSTANTIATE_TEST_SUITE_P(Families, Unplugged, ::testing::ValuesIn(sdkFamilies),
                         [](const auto& test) { return test.param.baseName; });

class Measured : public LibraryTest {
 protected:
  // Replaces the SDK's cameras by this model, and scans.
  void take(const SimulatedSdk& sdk, const std::string& model) {
    ASSERT_EQ(sdk.command(("camera " + model).c_str()), 1);
    ASSERT_GE(oc.scan(), 1);
  }
};

TEST_F(Measured, ACommandUnplugsSilentlyAtItsCall) {
  const SimulatedSdk sdk = install("ASICamera2");
  ASSERT_EQ(sdk.command("unplug 0 ASIGetVideoData 3 silently"), 1);
  oc.scan();
  ASSERT_EQ(oc.open(0, 64, 48, 1, 0, 1000, 0, 0), 1);
  EXPECT_EQ(readFrame(), 64 * 48);
  EXPECT_EQ(readFrame(), 64 * 48);
  EXPECT_EQ(readFrame(), 0);
  EXPECT_EQ(readFrame(), 0);
}

// The frame that a read gives must be this one of the stream.
void expectFrame(const SimulatedSdk& sdk, const std::vector<std::uint8_t>& frame, int number) {
  std::vector<std::uint8_t> expected(frame.size());
  EXPECT_EQ(sdk.render_frame(number, expected.data(), static_cast<int>(expected.size())),
            static_cast<int>(frame.size()));
  EXPECT_TRUE(frame == expected) << "frame " << number;
}

TEST_F(Measured, DamagedFramesOfAUsb2ModelOutlastTheTimeLimit) {
  const SimulatedSdk sdk = install("ASICamera2");
  take(sdk, "ZWO ASI120MM");
  ASSERT_EQ(sdk.command("damage 1 1 20"), 1);
  ASSERT_EQ(oc.open(0, 1280, 960, 1, 0, 100'000, 0, 0), 1) << error();
  EXPECT_EQ(readFrame(250), 1280 * 960) << "two seconds later, for want of an earlier answer";
  expectFrame(sdk, frame, 20);
}

TEST_F(Measured, DamagedFramesOfOtherModelsDoNot) {
  const SimulatedSdk sdk = install("ASICamera2");
  take(sdk, "ZWO ASI120MM-S");
  ASSERT_EQ(sdk.command("damage 1 1 20"), 1);
  ASSERT_EQ(oc.open(0, 1280, 960, 1, 0, 100'000, 0, 0), 1) << error();
  EXPECT_EQ(readFrame(250), 0);
  EXPECT_EQ(readFrame(250), 1280 * 960);
  expectFrame(sdk, frame, 2);
}

TEST_F(Measured, SettingsOutlastAClose) {
  const SimulatedSdk sdk = install("ASICamera2");
  oc.scan();
  const auto set = sdk.module.function<int(int, int, long, int)>("ASISetControlValue");
  const auto get = sdk.module.function<int(int, int, long*, int*)>("ASIGetControlValue");
  constexpr int bandwidth = 6;
  constexpr int coolerOn = 17;
  for (const long expected : {50L, 80L}) {
    ASSERT_EQ(oc.open(1, 64, 48, 1, 0, 1000, 0, 0), 1);
    long value = 0;
    int isAuto = 0;
    EXPECT_EQ(get(1, bandwidth, &value, &isAuto), 0);
    EXPECT_EQ(value, expected);
    EXPECT_EQ(get(1, coolerOn, &value, &isAuto), 0);
    EXPECT_EQ(value, 0) << "the cooler starts switched off";
    EXPECT_EQ(set(1, bandwidth, 80, 0), 0);
    EXPECT_EQ(set(1, coolerOn, 1, 0), 0);
    oc.close();
  }
}

class KeptFlip : public AsiTest {
 protected:
  // The mean of the raw samples of one colour filter in one quarter of a frame.
  double mean(int quarterX, int quarterY, int filterX, int filterY) const {
    double sum = 0;
    double count = 0;
    for (int y = quarterY * 100 + filterY; y < quarterY * 100 + 100; y += 2) {
      for (int x = quarterX * 160 + filterX; x < quarterX * 160 + 160; x += 2) {
        sum += frame.begin()[y * 320 + x];
        count += 1;
      }
    }
    return sum / count;
  }

  // The means of all filters in all quarters, as they are without this flip.
  std::vector<double> meansOf(int flip) const {
    const int mirror = flip % 2;
    const int turn = flip / 2;
    std::vector<double> means;
    means.reserve(16);
    for (int place = 0; place < 16; ++place) {
      means.push_back(
          mean(place / 8 ^ mirror, place / 4 % 2 ^ turn, place / 2 % 2 ^ mirror, place % 2 ^ turn));
    }
    return means;
  }
};

// A raw frame then begins with another colour than the reported pattern says.
TEST_F(KeptFlip, TurnsTheSkyAndItsBayerPattern) {
  small.height = 200;
  rescan();
  std::vector<double> usual;
  for (const int flip : {0, 1, 2, 3}) {
    ASSERT_EQ(sdk.command(("keep 0 9 " + std::to_string(flip)).c_str()), 1);
    ASSERT_EQ(oc.open(0, 320, 200, 1, 0, 60000, 500, 0), 1) << error();
    ASSERT_EQ(nextFrame(), 320 * 200);
    oc.close();
    const std::vector<double> means = meansOf(flip);
    usual = usual.empty() ? means : usual;
    for (std::size_t place = 0; place < means.size(); ++place) {
      EXPECT_NEAR(means[place], usual[place], 0.2) << "flip " << flip << ", place " << place;
    }
    EXPECT_EQ(infoValue(0, "bayer"), "8");
  }
  EXPECT_GT(usual[0] - usual[3], 1.5) << "red is brighter than blue at the top left";
}

TEST_F(Measured, TheDepthIsRefusedUntilTheSizeIsSet) {
  const SimulatedSdk sdk = install("qhyccd");
  take(sdk, "QHY174M");
  constexpr std::uint32_t refused = 0xFFFFFFFF;
  char id[256];
  ASSERT_EQ(sdk.module.function<std::uint32_t(std::uint32_t, char*)>("GetQHYCCDId")(0, id), 0U);
  void* const handle = sdk.module.function<void*(char*)>("OpenQHYCCD")(id);
  ASSERT_NE(handle, nullptr);
  const auto setBin =
      sdk.module.function<std::uint32_t(void*, std::uint32_t, std::uint32_t)>("SetQHYCCDBinMode");
  const auto setBits =
      sdk.module.function<std::uint32_t(void*, std::uint32_t)>("SetQHYCCDBitsMode");
  const auto setSize = sdk.module.function<std::uint32_t(
      void*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t)>("SetQHYCCDResolution");
  EXPECT_EQ(sdk.module.function<std::uint32_t(void*)>("InitQHYCCD")(handle), 0U);
  EXPECT_EQ(setBits(handle, 16), 0U);
  EXPECT_EQ(setBin(handle, 2, 2), 0U);
  EXPECT_EQ(setBits(handle, 16), refused);
  EXPECT_EQ(setSize(handle, 0, 0, 960, 600), 0U);
  EXPECT_EQ(setBits(handle, 16), 0U);
  EXPECT_EQ(setBin(handle, 2, 2), 0U);
  EXPECT_EQ(setBits(handle, 16), refused);
  EXPECT_EQ(setBin(handle, 1, 1), 0U);
  EXPECT_EQ(setBits(handle, 16), 0U);
}

TEST_F(Measured, RealTimingTakesTheTimeOfRealCameras) {
  const SimulatedSdk asi = install("ASICamera2");
  const SimulatedSdk qhy = install("qhyccd");
  asi.stop_clock(0);
  qhy.stop_clock(0);
  ASSERT_EQ(asi.command("timing real; camera ZWO ASI2600MM Pro; camera ZWO ASI120MM"), 1);
  ASSERT_EQ(qhy.command("timing real"), 1);
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  EXPECT_EQ(oc.scan(), 2 + 4);
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(260 + 2500 + 1000));
}

}  // namespace
}  // namespace orvane::testing
