// A full session with one camera, run once for each possible fault: each call into the SDK fails
// with each of the maker's codes, each function is missing, each look-up fails, each allocation
// fails, and the camera is unplugged before each call. Every run must keep the contract, leave
// nothing open and leak no memory. A normal session must work afterwards.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iostream>
#include <map>
#include <memory>
#include <set>

#include "api/state.hpp"
#include "doubles/scripted_platform.hpp"
#include "doubles/sdk_directory.hpp"
#include "doubles/sdk_families.hpp"
#include "doubles/simulated_sdk.hpp"
#include "support/message_table.hpp"
#include "torture/checked_library.hpp"
#include "torture/failing_allocation.hpp"

namespace orvane::testing {
namespace {

constexpr OrvaneDesktopCamera linked{
    ::oc_library_dir, ::oc_scan,   ::oc_libraries,   ::oc_info, ::oc_open,
    ::oc_width,       ::oc_height, ::oc_buffer_size, ::oc_read, ::oc_apply,
    ::oc_temperature, ::oc_close,  ::oc_error,       nullptr};

#if defined(_WIN32) || defined(__SANITIZE_ADDRESS__)
constexpr bool isThorough = false;  // runs take longer here
#else
constexpr bool isThorough = true;
#endif

constexpr int readsInSession = 5;
constexpr int exposureUs = 20000;
constexpr int framePeriodUs = 1000000;  // longer than a frame of any camera

// One fault in a session.
struct Fault {
  std::string command{};   // for the simulated SDK
  std::string missing{};   // the function that is always missing
  std::size_t lookup = 0;  // the look-up that fails, from 1
  long allocation = 0;     // the allocation that fails, from 1
};

std::ostream& operator<<(std::ostream& stream, const Fault& fault) {
  return stream << "command \"" << fault.command << "\", missing \"" << fault.missing
                << "\", look-up " << fault.lookup << ", allocation " << fault.allocation;
}

// The nth call of the function, in a command.
std::string callText(const std::string& function, int nth) {
  return function + " " + std::to_string(nth);
}

// The camera is unplugged before the nth call of the function.
Fault unplugged(const std::string& function, int nth) {
  return {.command = "unplug 0 " + callText(function, nth)};
}

// The results of a session; empty where std::bad_alloc left a function.
struct Outcome {
  std::optional<int> scanned;
  std::optional<int> opened;
  int frames = 0;
  std::optional<int> applied;
  std::optional<double> celsius;
  std::optional<int> rescanned;
};

// The number of platform events before the allocation that failed.
std::size_t passedBeforeFailure = 0;

// Destroys and constructs the state, because after an assignment its strings would keep their
// memory.
void forgetEverything() {
  std::destroy_at(&state);
  std::construct_at(&state);
}

class TortureTest : public ::testing::Test {
 protected:
  explicit TortureTest(SdkFamily family)
      : family_(family), camera_(torturedCamera(family_)), sdk_(installed()) {
    scripted::Platform& script = scripted::platform();
    library_ = &script.libraries[directory_.utf8() + "/" + family_.baseName];
    for (const std::string& function : functionsOf(family_.baseName)) {
      library_->add(function, sdk_.module.function<void()>(function.c_str()));
    }
    script.admits = [this](const scripted::Library&, const char* function) {
      lookups_.emplace_back(function);
      return lookups_.size() != failingLookup_;
    };
    script.begins = leaveLibrary;
    script.ends = enterLibrary;
    for (std::size_t i = 0; i < world_.size(); ++i) {
      if (family_.baseName == std::string(sdkNames[i])) {
        world_[i] = {camera_};
      }
    }
    whenAllocationFails([] { passedBeforeFailure = scripted::platform().passed.size(); });
  }

  // Records the calls of a session without faults. It runs two and records the second: before that
  // one the SDK is in the same state as before every later session.
  void recordSession() {
    const auto wellSession = [&](CheckedLibrary& library) { expectAllWell(session(library, 0)); };
    runWith({}, wellSession);
    isQhyReady_ = std::string(family_.baseName) == "qhyccd";
    runWith({}, wellSession);
    allocations_ = allocationCount();
    std::map<std::string, int> calls;
    for (const std::string& function : lookups_) {
      recorded_.emplace_back(function, ++calls[function]);
    }
    functions_ = static_cast<int>(calls.size());
    EXPECT_GE(static_cast<int>(recorded_.size()), family_.leastCalls);
    EXPECT_GE(functions_, family_.leastFunctions);
    EXPECT_GE(allocations_, 15);
  }

  // One run: a session with the fault, then one without. Returns whether both were as expected. A
  // device may stay open if the fault `prevents` a call of the function that closes it.
  bool run(const Fault& fault, const std::string& prevents = "") {
    return runWith(fault, [&](CheckedLibrary& library) {
      const int leftOpen = prevents == family_.closeCall ? 1 : 0;
      const Outcome outcome = session(library, leftOpen);
      ++runs_;
      failedScans_ += outcome.scanned != 1 ? 1 : 0;
      failedOpens_ += outcome.opened != 1 ? 1 : 0;

      repair(leftOpen);
      expectAllWell(session(library, 0));
      expectNothingOpen(0);
    });
  }

  // Runs the body as in a new process, with the fault. Afterwards the library must have freed all
  // of its memory. Returns whether nothing has failed so far.
  template <class Body>
  bool runWith(const Fault& fault, Body body) {
    startAnew();
    inject(fault);
    try {
      CheckedLibrary library = checkedLibrary();
      body(library);
    } catch (const Violation& violation) {
      leaveLibrary();
      ADD_FAILURE() << violation.text;
    }
    forgetEverything();
    EXPECT_EQ(libraryBlocks(), 0) << "memory lost";
    if (HasFailure()) {
      std::cout << "after: " << fault << "\n" << std::flush;
    }
    return !HasFailure();
  }

  // Prints and records the figures of a test case. Returns the number of runs.
  int report(const char* kind) {
    RecordProperty("runs", runs_);
    RecordProperty("runs_without_camera", failedScans_);
    RecordProperty("runs_without_stream", failedOpens_);
    std::cout << "torture|" << family_.baseName << "|" << kind << "|runs " << runs_ << "|calls "
              << recorded_.size() << "|functions " << functions_ << "|scans failed " << failedScans_
              << "|opens failed " << failedOpens_ << "|messages " << messages_.size() << "\n"
              << std::flush;
    return runs_;
  }

  // Restores the state of a new process, except that QHYCCD's SDK stays initialised: the library
  // initialises it only in its first scan, so a reset SDK is initialised here.
  void startAnew() {
    forgetEverything();
    sdk_.reset();
    sdk_.stop_clock(1);
    sdk_.setCameras({camera_});
    if (isQhyReady_) {
      sdk_.module.function<std::uint32_t()>("InitQHYCCDResource")();
    }
    sdk_.log_enable(1);
    lookups_.clear();
    scripted::platform().passed.clear();
    sdk_.takeLog();
  }

  CheckedLibrary checkedLibrary() {
    const auto enter = [this] {
      hadFailed_ = hasAllocationFailed();
      enterLibrary();
    };
    const auto leave = [this]() -> std::optional<std::size_t> {
      leaveLibrary();
      return !hadFailed_ && hasAllocationFailed() ? std::optional(passedBeforeFailure)
                                                  : std::nullopt;
    };
    return {linked, Contract(world_, isQhyReady_), {[this] { return takeEvents(); }, enter, leave}};
  }

  // Merges the look-ups of the platform layer with the SDK's log: exactly one call must follow each
  // successful look-up.
  std::vector<SdkCall> takeEvents() {
    std::vector<SdkCall> calls = parseLog(sdk_.takeLog());
    std::size_t used = 0;
    std::vector<SdkCall> events;
    for (const scripted::Passage& one : scripted::platform().passed) {
      if (one.isLoad) {
        events.push_back({.function = "load",
                          .inputs = one.name.substr(one.name.rfind('/') + 1),
                          .result = one.isFound ? "1" : "0"});
      } else if (!one.isFound) {
        events.push_back({.function = one.name, .isMissing = true});
      } else if (used < calls.size() && calls[used].function == one.name) {
        events.push_back(std::move(calls[used++]));
      } else {
        throw Violation{"looked up, but not called: " + one.name};
      }
    }
    if (used != calls.size()) {
      throw Violation{"called without a look-up of its own: " + calls[used].function};
    }
    scripted::platform().passed.clear();
    return events;
  }

  void inject(const Fault& fault) {
    EXPECT_EQ(sdk_.command(fault.command.c_str()), 1) << fault;
    library_->missing = {fault.missing};
    failingLookup_ = fault.lookup;
    countAllocations(fault.allocation);
  }

  void repair(int leftOpen) {
    sdk_.clear_faults();
    inject({});
    sdk_.set_plugged(0, 1);
    if (leftOpen > 0) {
      sdk_.setCameras({camera_});  // as if the camera were unplugged and plugged in again
    }
  }

  // A full session. Whenever nothing should be open, at most `leftOpen` devices may be open in the
  // SDK.
  Outcome session(CheckedLibrary& library, int leftOpen) {
    Outcome outcome;
    const auto note = [&] { messages_.insert(library.contract().error()); };
    library.libraryDir(directory_.utf8().c_str());
    outcome.scanned = library.scan();
    note();
    expectNothingOpen(leftOpen);
    for (int index = -1; index <= static_cast<int>(library.contract().catalogue().size());
         ++index) {
      library.info(index);
    }
    outcome.opened = library.open({.width = camera_.width,
                                   .height = camera_.height,
                                   .format = family_.richFormat,
                                   .exposureUs = exposureUs,
                                   .gain = 100,
                                   .offset = 5});
    note();
    if (outcome.opened != 1) {
      expectNothingOpen(leftOpen);
    }
    for (int i = 0; i < readsInSession; ++i) {
      outcome.frames += readFrame(library) > 0 ? 1 : 0;
      note();
    }
    outcome.applied = library.apply(exposureUs / 2, 200, 6);
    note();
    outcome.celsius = library.temperature();
    library.close();
    expectNothingOpen(leftOpen);
    expectClosed(library);
    outcome.rescanned = library.scan();
    note();
    expectNothingOpen(leftOpen);
    return outcome;
  }

  // Reads into a buffer of exactly the required size.
  int readFrame(CheckedLibrary& library) {
    if (!family_.waitsForFrames) {
      sdk_.advance_clock(framePeriodUs);
    }
    return library.read(std::max(library.contract().bufferSize(), 1), 540).value_or(-1);
  }

  void expectNothingOpen(int leftOpen) {
    const SimInvariants now = sdk_.invariants();
    EXPECT_LE(now.devicesOpen, leftOpen);
    EXPECT_EQ(now.streamsRunning, 0);
    EXPECT_EQ(now.callsOnClosed, 0);
    EXPECT_EQ(now.stopsWithoutStart, 0);
    EXPECT_EQ(now.shortBuffers, 0);
    EXPECT_EQ(now.writesPastBuffer, 0);
  }

  static void expectClosed(CheckedLibrary& library) {
    EXPECT_EQ(::oc_buffer_size(), 0);
    // The allocation of this message may be the one that fails. The contract has then already
    // checked the message about that.
    const auto expectRefused = [](const auto& call, int failure, const char* message) {
      const bool hadFailed = hasAllocationFailed();
      EXPECT_EQ(call(), failure);
      EXPECT_STREQ(::oc_error(), hadFailed == hasAllocationFailed() ? message : "std::bad_alloc");
    };
    expectRefused([&] { return library.read(1, 0); }, -1, "Camera closed or buffer too small");
    expectRefused([&] { return library.apply(1, 0, 0); }, 0, "Camera closed");
    EXPECT_TRUE(std::isnan(library.temperature().value_or(0)));
  }

  static void expectAllWell(const Outcome& outcome) {
    EXPECT_EQ(outcome.scanned, 1);
    EXPECT_EQ(outcome.opened, 1);
    EXPECT_EQ(outcome.frames, readsInSession);
    EXPECT_EQ(outcome.applied, 1);
    EXPECT_TRUE(std::isfinite(outcome.celsius.value_or(HUGE_VAL)));
    EXPECT_EQ(outcome.rescanned, 1);
  }

  SimulatedSdk installed() const {
    directory_.add(family_.baseName);
    return SimulatedSdk(directory_.file(family_.baseName));
  }

  SdkFamily family_;
  SimCamera camera_;
  SdkDirectory directory_;
  SimulatedSdk sdk_;
  scripted::Library* library_ = nullptr;  // in the platform layer
  std::vector<std::string> lookups_;      // all in a session
  std::size_t failingLookup_ = 0;         // from 1; 0: none fails
  World world_;
  std::vector<std::pair<std::string, int>> recorded_;  // functions; nth calls of them
  int functions_ = 0;
  long allocations_ = 0;
  bool isQhyReady_ = false;
  bool hadFailed_ = false;

  int runs_ = 0;
  int failedScans_ = 0;
  int failedOpens_ = 0;
  std::set<std::string> messages_;
};

class Torture : public TortureTest, public ::testing::WithParamInterface<SdkFamily> {
 protected:
  Torture() : TortureTest(GetParam()) {}

  void SetUp() override { recordSession(); }

  // The codes with which a call of the function can fail.
  std::vector<std::int64_t> codesOf(const std::string& function) const {
    if (family_.givesHandle && function == family_.openCall) {
      return {0};
    }
    std::vector<std::int64_t> codes;
    for (std::size_t i = 0; i < family_.codes.size(); i += isThorough ? 1 : family_.codeStep) {
      codes.push_back(family_.codes[i]);
    }
    return codes;
  }
};

TEST_P(Torture, EveryCallFailsWithEveryCode) {
  int expected = 0;
  for (const auto& [function, nth] : recorded_) {
    for (const std::int64_t code : codesOf(function)) {
      ++expected;
      const std::string command = "force " + callText(function, nth) + " 1 " + std::to_string(code);
      ASSERT_TRUE(run({.command = command}, function));
    }
  }
  EXPECT_EQ(report("failed calls"), expected);
  EXPECT_GE(expected, family_.leastCalls * (isThorough ? 13 : 1));
  // At least a tenth of the faults must make the scan or the open fail.
  EXPECT_GE(failedScans_ + failedOpens_, expected / 10);
  EXPECT_GE(messages_.size(), static_cast<std::size_t>(functions_));
}

TEST_P(Torture, EveryFunctionIsMissing) {
  std::set<std::string> names;
  for (const auto& [function, nth] : recorded_) {
    names.insert(function);
  }
  for (const std::string& function : names) {
    ASSERT_TRUE(run({.missing = function}, function));
  }
  EXPECT_EQ(report("missing functions"), functions_);
  EXPECT_GE(failedOpens_, functions_ / 2);
}

TEST_P(Torture, EveryLookupFails) {
  for (std::size_t k = 0; k < recorded_.size(); ++k) {
    ASSERT_TRUE(run({.lookup = k + 1}, recorded_[k].first));
  }
  EXPECT_EQ(report("failed look-ups"), static_cast<int>(recorded_.size()));
  EXPECT_GE(failedScans_ + failedOpens_, 10);
}

TEST_P(Torture, EveryAllocationFails) {
  for (long k = 1; k <= allocations_; ++k) {
    ASSERT_TRUE(run({.allocation = k}));
  }
  EXPECT_EQ(report("failed allocations"), allocations_);
  EXPECT_GE(failedScans_, 3);
  const std::vector<MessageRow> documented = messageRows("Out of memory");
  ASSERT_EQ(documented.size(), 1U);
  EXPECT_EQ(messages_.count(documented[0].text), 1U);
}

TEST_P(Torture, CameraIsUnpluggedBeforeEveryCall) {
  for (const auto& [function, nth] : recorded_) {
    ASSERT_TRUE(run(unplugged(function, nth)));
  }
  EXPECT_EQ(report("unplugged"), static_cast<int>(recorded_.size()));
  EXPECT_GE(failedScans_ + failedOpens_, 10);
}

// The library initialises QHYCCD's SDK once per process. It retries in each scan until that
// succeeds.
class TortureOfTheFirstScan : public TortureTest {
 protected:
  TortureOfTheFirstScan() : TortureTest(familyNamed("qhyccd")) {}

  // One run in which the initialisation fails.
  void runWithout(const Fault& fault, const std::string& message) {
    ++runs_;
    runWith(fault, [&](CheckedLibrary& library) {
      library.libraryDir(directory_.utf8().c_str());
      for (int scan = 0; scan < 2; ++scan) {
        EXPECT_EQ(library.scan(), 0);
        EXPECT_STREQ(::oc_error(), message.c_str());
        EXPECT_EQ(library.open({}), 0);
        EXPECT_STREQ(::oc_error(), "Camera not found; rescan");
      }
      expectNothingOpen(0);
      expectClosed(library);
    });
  }
};

TEST_F(TortureOfTheFirstScan, FailsUntilTheSdkIsInitialised) {
  const std::string function = "InitQHYCCDResource";
  for (const std::int64_t code : family_.codes) {
    runWithout({.command = "force " + function + " 1 -1 " + std::to_string(code)},
               function + ": " + std::to_string(code));
    if (HasFailure()) {
      break;
    }
  }
  runWithout({.missing = function}, "qhyccd: missing " + function);
  EXPECT_EQ(report("first scans"), static_cast<int>(family_.codes.size()) + 1);

  // The initialisation then succeeds, even if the camera is unplugged directly before it.
  runWith(unplugged(function, 1), [&](CheckedLibrary& library) {
    library.libraryDir(directory_.utf8().c_str());
    EXPECT_EQ(library.scan(), 0);
    EXPECT_STREQ(::oc_error(), "");
    sdk_.set_plugged(0, 1);
    expectAllWell(session(library, 0));
  });
}

// ToupTek has a second code for success: 1, S_FALSE.
class TortureByRemarks : public TortureTest {
 protected:
  TortureByRemarks() : TortureTest(familyNamed("toupcam")) {}
};

TEST_F(TortureByRemarks, EveryCallReturnsTheOtherSuccess) {
  recordSession();
  for (const auto& [function, nth] : recorded_) {
    if (function != "Toupcam_Open" && function != "Toupcam_Close") {
      ASSERT_TRUE(
          run({.command = "output " + function + " result " + std::to_string(nth) + " 1 1"}));
    }
  }
  EXPECT_GE(report("remarks"), 25);
  // One result is a value: MaxBitDepth 1 removes the format that the session opens.
  EXPECT_EQ(failedOpens_, 1);
  EXPECT_EQ(failedScans_, 0);
}

INSTANTIATE_TEST_SUITE_P(Sdks, Torture, ::testing::ValuesIn(sdkFamilies),
                         [](const auto& instance) { return std::string(instance.param.baseName); });

}  // namespace
}  // namespace orvane::testing
