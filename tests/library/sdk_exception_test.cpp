// SDK functions that throw, as the makers' SDKs do on each system: which exceptions become error
// texts, which are swallowed, which leave the library unchanged, and what is open afterwards.
#include <cmath>
#include <cstdio>

#include "library/family_test.hpp"
#include "support/leaving_exception.hpp"
#include "support/process_usage.hpp"

namespace orvane::testing {
namespace {

// The step of a session in which a call throws.
enum class Step { Scan, ScanOfLimits, Open, HalfOpen, Apply, Read, Temperature, Stop, Close };

struct ThrowingCall {
  const char* situation;
  const char* function;
  Step step;
};

constexpr std::pair<const char*, Step> situations[] = {
    {"count", Step::Scan},
    {"entry", Step::Scan},
    {"open in a scan", Step::Scan},
    {"init in a scan", Step::ScanOfLimits},
    {"limits in a scan", Step::ScanOfLimits},
    {"open", Step::Open},
    {"init in an open", Step::HalfOpen},
    {"settings in an open", Step::HalfOpen},
    {"start", Step::HalfOpen},
    {"settings", Step::Apply},
    {"frame", Step::Read},
    {"temperature", Step::Temperature},
    {"stop", Step::Stop},
    {"close", Step::Close},
};
constexpr std::size_t frameSituation = 10;

// The function that throws in each situation. ToupTek has no init function; the row names the first
// query instead.
struct ThrowingFamily {
  const char* baseName;
  const char* functions[std::size(situations)];
};

std::ostream& operator<<(std::ostream& stream, const ThrowingFamily& family) {
  return stream << family.baseName;
}

constexpr ThrowingFamily throwingFamilies[] = {
    {"ASICamera2",
     {"ASIGetNumOfConnectedCameras", "ASIGetCameraProperty", "ASIOpenCamera", "ASIInitCamera",
      "ASIGetControlCaps", "ASIOpenCamera", "ASIInitCamera", "ASISetControlValue",
      "ASIStartVideoCapture", "ASISetControlValue", "ASIGetVideoData", "ASIGetControlValue",
      "ASIStopVideoCapture", "ASICloseCamera"}},
    {"PlayerOneCamera",
     {"POAGetCameraCount", "POAGetCameraProperties", "POAOpenCamera", "POAInitCamera",
      "POAGetConfigAttributesByConfigID", "POAOpenCamera", "POAInitCamera", "POASetConfig",
      "POAStartExposure", "POASetConfig", "POAGetImageData", "POAGetConfig", "POAStopExposure",
      "POACloseCamera"}},
    {"qhyccd",
     {"ScanQHYCCD", "GetQHYCCDId", "OpenQHYCCD", "InitQHYCCD", "GetQHYCCDParamMinMaxStep",
      "OpenQHYCCD", "InitQHYCCD", "SetQHYCCDParam", "BeginQHYCCDLive", "SetQHYCCDParam",
      "GetQHYCCDLiveFrame", "GetQHYCCDParam", "StopQHYCCDLive", "CloseQHYCCD"}},
    {"toupcam",
     {"Toupcam_EnumV2", "Toupcam_get_MaxBitDepth", "Toupcam_Open", "Toupcam_get_RawFormat",
      "Toupcam_get_ExpTimeRange", "Toupcam_Open", "Toupcam_put_Option", "Toupcam_put_ExpoTime",
      "Toupcam_StartPullModeWithCallback", "Toupcam_put_ExpoTime", "Toupcam_PullImageWithRowPitch",
      "Toupcam_get_Temperature", "Toupcam_Stop", "Toupcam_Close"}}};

class SdkException : public FamilyTest, public ::testing::WithParamInterface<ThrowingFamily> {
 protected:
  SdkException() : FamilyTest(GetParam().baseName) {}

  // A normal session works.
  void expectCleanSession() {
    ASSERT_EQ(oc.scan(), 1) << error();
    EXPECT_EQ(error(), "");
    ASSERT_EQ(open(), 1) << error();
    EXPECT_EQ(nextFrame(), 320 * 202) << error();
    EXPECT_EQ(oc.apply(10000, 150, 5), 1) << error();
    EXPECT_FALSE(std::isnan(oc.temperature()));
    oc.close();
    expectClean(sdk);
  }

  // Runs one session in which the call throws. Returns the exception that left the library.
  LeavingException sessionWith(const ThrowingCall& call, int kind, double& result) {
    EXPECT_EQ(oc.scan(), 1) << error();
    if (call.step >= Step::Apply) {
      EXPECT_EQ(open(), 1) << error();
    }
    sdk.throwFrom(call.function, kind, "usb lost");
    return leavingException([&] {
      if (call.step <= Step::ScanOfLimits) {
        result = oc.scan();
      } else if (call.step <= Step::HalfOpen) {
        result = open();
      } else if (call.step == Step::Apply) {
        result = oc.apply(10000, 150, 5);
      } else if (call.step == Step::Read) {
        result = nextFrame();
      } else if (call.step == Step::Temperature) {
        result = oc.temperature();
      } else {
        oc.close();
      }
    });
  }

  void expectRow(const ThrowingCall& call, int kind);
};

// Checks and prints one row of the table.
void SdkException::expectRow(const ThrowingCall& call, int kind) {
  SCOPED_TRACE(std::string(call.situation) + ", kind " + std::to_string(kind));
  const char* const kinds[] = {"standard", "int", "object"};
  const char* const leavingKinds[] = {"", "int 7", "object"};
  const bool isSwallowed = call.step == Step::ScanOfLimits || call.step >= Step::Temperature;
  const bool leaves = kind != SIM_THROW_STANDARD && !isSwallowed;
  const bool isReported = kind == SIM_THROW_STANDARD && !isSwallowed;
  const std::int32_t aliveBefore = sdk.invariants().exceptionsAlive;

  double result = -99;
  const LeavingException left = sessionWith(call, kind, result);
  EXPECT_EQ(left.what, leaves ? leavingKinds[kind] : "");
#ifdef __MINGW32__
  EXPECT_EQ(left.code, leaves ? 0xE06D7363U : 0U);
  EXPECT_EQ(left.parameters.size(), leaves ? 4U : 0U);
  // A handler destroys the object when it is done. The test's handler does not.
  const int kept = leaves && kind == SIM_THROW_OBJECT ? 1 : 0;
#else
  const int kept = 0;
#endif
  EXPECT_EQ(sdk.invariants().exceptionsAlive - aliveBefore, kept);
  EXPECT_EQ(error(), isReported ? "usb lost" : "");

  if (leaves) {
    EXPECT_EQ(result, -99);
  } else if (call.step <= Step::ScanOfLimits) {
    EXPECT_EQ(result, call.step == Step::Scan ? 0 : 1);
  } else if (call.step == Step::Temperature) {
    EXPECT_TRUE(std::isnan(result));
  } else if (call.step < Step::Stop) {
    EXPECT_EQ(result, call.step == Step::Read ? -1 : 0);
  }
  if (call.step == Step::ScanOfLimits && std::string(call.situation) == "init in a scan") {
    EXPECT_EQ(infoValue(0, "maxExposureUs") + infoValue(0, "maxGain"), "00");
  }

  // A camera still streams after a failure of its settings, frame or temperature. A camera that an
  // exception left half open stays open until the host closes it. A camera whose close threw stays
  // open in the SDK.
  const int openAfter = sdk.invariants().devicesOpen;
  const bool isHalfOpen = call.step == Step::HalfOpen && leaves;
  const bool streamsOn = call.step >= Step::Apply && call.step <= Step::Temperature;
  EXPECT_EQ(openAfter, streamsOn || isHalfOpen || call.step == Step::Close ? 1 : 0);
  if (streamsOn) {
    sdk.clear_faults();
    EXPECT_EQ(nextFrame(), 320 * 202) << error();
  }
  sdk.clear_faults();
  if (isHalfOpen) {
    EXPECT_EQ(oc.scan(), -1) << "a half-open camera counts as open";
    if (std::string(call.situation) == "start") {
      EXPECT_FALSE(std::isnan(oc.temperature()));
    }
    sdk.takeLog();
    oc.close();
    EXPECT_TRUE(sdk.takeLog().starts_with(family.closeCall)) << "no stop before it";
  }
  oc.close();
  expectClosed();
  const int openAtEnd = sdk.invariants().devicesOpen;
  EXPECT_EQ(openAtEnd, call.step == Step::Close ? 1 : 0);

  char number[32] = "-";
  if (result != -99) {
    static_cast<void>(std::snprintf(number, sizeof number, "%g", result));
  }
  std::printf("exception| %-15s | %-20s | %-8s | %-3s | %-8s | %08X | %d | %d |\n",
              GetParam().baseName, call.situation, kinds[kind], number,
              isReported ? "usb lost" : "", left.code, openAfter, openAtEnd);
  if (call.step == Step::Close) {
    sdk.setCameras({small});  // as if it were plugged in again
  }
  expectCleanSession();
}

TEST_P(SdkException, InEveryStepGivesItsResultAndLeavesNothingOpen) {
  for (const int kind : {SIM_THROW_STANDARD, SIM_THROW_NUMBER, SIM_THROW_OBJECT}) {
    for (std::size_t i = 0; i < std::size(situations); ++i) {
      const auto& [name, step] = situations[i];
      // For QHYCCD and ToupTek a failure to read the limits ends the scan.
      const bool endsScan = step == Step::ScanOfLimits && family.givesHandle;
      expectRow({name, GetParam().functions[i], endsScan ? Step::Scan : step}, kind);
    }
  }
}

// what() may return null, or a pointer that cannot be read. Only with mingw-w64: the compilers' own
// libraries do not support a null text.
#ifdef __MINGW32__
TEST_P(SdkException, WithoutReadableTextIsReported) {
  ASSERT_EQ(oc.scan(), 1);
  ASSERT_EQ(open(), 1);
  const char* const frameCall = GetParam().functions[frameSituation];
  for (const char* text : {static_cast<const char*>(nullptr), reinterpret_cast<const char*>(16)}) {
    sdk.throwFrom(frameCall, SIM_THROW_STANDARD, text);
    EXPECT_EQ(nextFrame(), -1);
    EXPECT_EQ(error(), "Unknown exception");
    sdk.clear_faults();
  }
  const std::string text(5000, 'x');
  sdk.throwFrom(frameCall, SIM_THROW_STANDARD, text.c_str());
  EXPECT_EQ(nextFrame(), -1);
  EXPECT_EQ(error(), text.substr(0, 1023));
  sdk.clear_faults();
  EXPECT_EQ(sdk.invariants().exceptionsAlive, 0);
}
#endif

TEST_P(SdkException, TenThousandTimesLeaksNothing) {
  ASSERT_EQ(oc.scan(), 1);
  ASSERT_EQ(open(), 1);
  sdk.log_enable(0);
  std::vector<std::uint8_t> buffer(static_cast<std::size_t>(oc.buffer_size()));
  const char* const frameCall = GetParam().functions[frameSituation];
  const auto throwOnce = [&](int kind) {
    sdk.throwFrom(frameCall, kind, "usb lost", 1, 1);
    int result = 0;
    const LeavingException left = leavingException([&] {
      result = oc.read(buffer.data(), static_cast<int>(buffer.size()), 0);
      // Some families check for a frame first, and make the throwing call only if there is one.
      if (result == 0) {
        sdk.advance_clock(100000);
        result = oc.read(buffer.data(), static_cast<int>(buffer.size()), 0);
      }
    });
    ASSERT_EQ(left.what, kind == SIM_THROW_STANDARD ? "" : "int 7");
    ASSERT_EQ(result, kind == SIM_THROW_STANDARD ? -1 : 0);
    sdk.clear_faults();
  };
  constexpr int times = 10000;
  for (const int kind : {SIM_THROW_STANDARD, SIM_THROW_NUMBER}) {
    for (int i = 0; i < 200; ++i) {
      throwOnce(kind);
    }
    const std::size_t bytesBefore = heapBytes();
    const std::size_t handlesBefore = openHandles();
    for (int i = 0; i < times; ++i) {
      throwOnce(kind);
    }
    const auto growth = static_cast<std::ptrdiff_t>(heapBytes() - bytesBefore);
    std::printf("exception| %s, kind %d, %d times: %td bytes\n", GetParam().baseName, kind, times,
                growth);
    EXPECT_LT(growth, std::ptrdiff_t{times}) << "less than one byte per exception";
    EXPECT_EQ(openHandles(), handlesBefore);
  }
  oc.close();
  expectClean(sdk);
}

INSTANTIATE_TEST_SUITE_P(Sdks, SdkException, ::testing::ValuesIn(throwingFamilies),
                         [](const auto& instance) { return std::string(instance.param.baseName); });

}  // namespace
}  // namespace orvane::testing
