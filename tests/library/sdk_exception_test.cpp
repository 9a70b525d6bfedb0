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

struct ThrowingFamily {
  const char* baseName;
  std::int32_t mosaic;
  std::vector<ThrowingCall> calls;
};

std::ostream& operator<<(std::ostream& stream, const ThrowingFamily& family) {
  return stream << family.baseName;
}

// For QHYCCD and ToupTek a failure to read the limits ends the scan. ToupTek has no init call.
std::vector<ThrowingFamily> throwingFamilies() {
  return {{"ASICamera2",
           0,
           {{"count", "ASIGetNumOfConnectedCameras", Step::Scan},
            {"property", "ASIGetCameraProperty", Step::Scan},
            {"open in a scan", "ASIOpenCamera", Step::Scan},
            {"init in a scan", "ASIInitCamera", Step::ScanOfLimits},
            {"limits in a scan", "ASIGetControlCaps", Step::ScanOfLimits},
            {"open", "ASIOpenCamera", Step::Open},
            {"init in an open", "ASIInitCamera", Step::HalfOpen},
            {"settings in an open", "ASISetControlValue", Step::HalfOpen},
            {"start", "ASIStartVideoCapture", Step::HalfOpen},
            {"settings", "ASISetControlValue", Step::Apply},
            {"frame", "ASIGetVideoData", Step::Read},
            {"temperature", "ASIGetControlValue", Step::Temperature},
            {"stop", "ASIStopVideoCapture", Step::Stop},
            {"close", "ASICloseCamera", Step::Close}}},
          {"PlayerOneCamera",
           0,
           {{"count", "POAGetCameraCount", Step::Scan},
            {"property", "POAGetCameraProperties", Step::Scan},
            {"open in a scan", "POAOpenCamera", Step::Scan},
            {"init in a scan", "POAInitCamera", Step::ScanOfLimits},
            {"limits in a scan", "POAGetConfigAttributesByConfigID", Step::ScanOfLimits},
            {"open", "POAOpenCamera", Step::Open},
            {"init in an open", "POAInitCamera", Step::HalfOpen},
            {"settings in an open", "POASetConfig", Step::HalfOpen},
            {"start", "POAStartExposure", Step::HalfOpen},
            {"settings", "POASetConfig", Step::Apply},
            {"frame", "POAGetImageData", Step::Read},
            {"temperature", "POAGetConfig", Step::Temperature},
            {"stop", "POAStopExposure", Step::Stop},
            {"close", "POACloseCamera", Step::Close}}},
          {"qhyccd",
           4,
           {{"count", "ScanQHYCCD", Step::Scan},
            {"id", "GetQHYCCDId", Step::Scan},
            {"open in a scan", "OpenQHYCCD", Step::Scan},
            {"init in a scan", "InitQHYCCD", Step::Scan},
            {"limits in a scan", "GetQHYCCDParamMinMaxStep", Step::Scan},
            {"open", "OpenQHYCCD", Step::Open},
            {"init in an open", "InitQHYCCD", Step::HalfOpen},
            {"settings in an open", "SetQHYCCDParam", Step::HalfOpen},
            {"start", "BeginQHYCCDLive", Step::HalfOpen},
            {"settings", "SetQHYCCDParam", Step::Apply},
            {"frame", "GetQHYCCDLiveFrame", Step::Read},
            {"temperature", "GetQHYCCDParam", Step::Temperature},
            {"stop", "StopQHYCCDLive", Step::Stop},
            {"close", "CloseQHYCCD", Step::Close}}},
          {"toupcam",
           0x42474752,
           {{"count", "Toupcam_EnumV2", Step::Scan},
            {"depth", "Toupcam_get_MaxBitDepth", Step::Scan},
            {"open in a scan", "Toupcam_Open", Step::Scan},
            {"raw format in a scan", "Toupcam_get_RawFormat", Step::Scan},
            {"limits in a scan", "Toupcam_get_ExpTimeRange", Step::Scan},
            {"open", "Toupcam_Open", Step::Open},
            {"option in an open", "Toupcam_put_Option", Step::HalfOpen},
            {"settings in an open", "Toupcam_put_ExpoTime", Step::HalfOpen},
            {"start", "Toupcam_StartPullModeWithCallback", Step::HalfOpen},
            {"settings", "Toupcam_put_ExpoTime", Step::Apply},
            {"frame", "Toupcam_PullImageWithRowPitch", Step::Read},
            {"temperature", "Toupcam_get_Temperature", Step::Temperature},
            {"stop", "Toupcam_Stop", Step::Stop},
            {"close", "Toupcam_Close", Step::Close}}}};
}

class SdkException : public LibraryTest, public ::testing::WithParamInterface<ThrowingFamily> {
 protected:
  SdkException() : sdk(install(GetParam().baseName)) {
    shown.bayerPattern = GetParam().mosaic;
    sdk.setCameras({shown});
  }

  int open() { return oc.open(0, shown.width, shown.height, 1, 0, 20000, 100, 5); }

  // Reads a frame after giving the SDK time to have one.
  int read() {
    sdk.advance_clock(100000);
    return readFrame();
  }

  // A normal session works.
  void expectCleanSession() {
    ASSERT_EQ(oc.scan(), 1) << error();
    EXPECT_EQ(error(), "");
    ASSERT_EQ(open(), 1) << error();
    EXPECT_EQ(read(), shown.width * shown.height) << error();
    EXPECT_EQ(oc.apply(10000, 100, 5), 1) << error();
    EXPECT_FALSE(std::isnan(oc.temperature()));
    oc.close();
    expectClean(sdk);
  }

  // Runs one session in which the call throws. Returns the exception that left the library.
  LeavingException sessionWith(const ThrowingCall& call, int kind, double& result) {
    const auto prepare = [&](bool opens) {
      ASSERT_EQ(oc.scan(), 1) << error();
      if (opens) {
        ASSERT_EQ(open(), 1) << error();
      }
    };
    prepare(call.step >= Step::Apply);
    if (call.step < Step::Open) {
      sdk.takeLog();
    }
    sdk.throwFrom(call.function, kind, "usb lost");
    return leavingException([&] {
      switch (call.step) {
        case Step::Scan:
        case Step::ScanOfLimits:
          result = oc.scan();
          break;
        case Step::Open:
        case Step::HalfOpen:
          result = open();
          break;
        case Step::Apply:
          result = oc.apply(10000, 100, 5);
          break;
        case Step::Read:
          result = read();
          break;
        case Step::Temperature:
          result = oc.temperature();
          break;
        default:
          oc.close();
      }
    });
  }

  void expectRow(const ThrowingCall& call, int kind);

  SimCamera shown = smallCamera();
  SimulatedSdk sdk;
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
#ifdef _WIN32
  EXPECT_EQ(left.code, leaves ? 0xE06D7363U : 0U);
  EXPECT_EQ(left.parameters.size(), leaves ? 4U : 0U);
  // A handler destroys the object when it is done. The test's handler does not.
  const int kept = leaves && kind == SIM_THROW_OBJECT ? 1 : 0;
#else
  const int kept = 0;
#endif
  EXPECT_EQ(sdk.invariants().exceptionsAlive - aliveBefore, kept);
  EXPECT_EQ(error(), isReported ? "usb lost" : "");

  const bool isScanStep = call.step == Step::Scan || call.step == Step::ScanOfLimits;
  if (leaves) {
    EXPECT_EQ(result, -99);
  } else if (isScanStep) {
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
  const bool streamsOn =
      call.step == Step::Apply || call.step == Step::Read || call.step == Step::Temperature;
  EXPECT_EQ(openAfter, streamsOn || isHalfOpen || call.step == Step::Close ? 1 : 0);
  if (streamsOn) {
    sdk.clear_faults();
    EXPECT_EQ(read(), shown.width * shown.height) << error();
  }
  sdk.clear_faults();
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
    sdk.setCameras({shown});  // as if it were plugged in again
  }
  expectCleanSession();
}

TEST_P(SdkException, InEveryStepGivesItsResultAndLeavesNothingOpen) {
  for (const int kind : {SIM_THROW_STANDARD, SIM_THROW_NUMBER, SIM_THROW_OBJECT}) {
    for (const ThrowingCall& call : GetParam().calls) {
      expectRow(call, kind);
    }
  }
}

// what() may return null, or a pointer that cannot be read. Windows only: GCC's library does not
// support a null text.
#ifdef _WIN32
TEST_P(SdkException, WithoutReadableTextIsReported) {
  ASSERT_EQ(oc.scan(), 1);
  ASSERT_EQ(open(), 1);
  const char* const frameCall = GetParam().calls[10].function;
  for (const char* text : {static_cast<const char*>(nullptr), reinterpret_cast<const char*>(16)}) {
    sdk.throwFrom(frameCall, SIM_THROW_STANDARD, text);
    EXPECT_EQ(read(), -1);
    EXPECT_EQ(error(), "Unknown exception");
    sdk.clear_faults();
  }
  const std::string text(5000, 'x');
  sdk.throwFrom(frameCall, SIM_THROW_STANDARD, text.c_str());
  EXPECT_EQ(read(), -1);
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
  const char* const frameCall = GetParam().calls[10].function;
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

INSTANTIATE_TEST_SUITE_P(Sdks, SdkException, ::testing::ValuesIn(throwingFamilies()),
                         [](const auto& instance) { return std::string(instance.param.baseName); });

}  // namespace
}  // namespace orvane::testing
