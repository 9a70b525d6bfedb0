// Unloading the library, with and without a camera streaming, and loading it again. The SDKs stay.
#ifdef _WIN32
#  include <windows.h>
#endif

#include <future>
#include <thread>
#include <vector>

#include "library/family_test.hpp"
#include "loading/surroundings.hpp"
#include "support/process_usage.hpp"

namespace orvane::testing {
namespace {

class Unload : public LibraryTest, public ::testing::WithParamInterface<const char*> {
 protected:
  static SimCamera camera() { return smallCamera(familyNamed(GetParam())); }

  static void stream(LibraryUnderTest& library, const SdkDirectory& place) {
    library.library_dir(place.utf8().c_str());
    ASSERT_EQ(library.scan(), 1) << library.error();
    ASSERT_EQ(library.open(0, 320, 202, 1, 0, 20000, 100, 5), 1) << library.error();
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(library.buffer_size()));
    EXPECT_GE(library.read(buffer.data(), library.buffer_size(), 1000), 0) << library.error();
  }
};

TEST_P(Unload, WhileStreamingCallsNothingAndTheSdkWorksWithTheNextLoad) {
  const SimulatedSdk sdk = install(GetParam());
  sdk.setCameras({camera()});
  stream(oc, directory);
  sdk.takeLog();
  oc.unload();
  EXPECT_EQ(sdk.takeLog(), "");
  EXPECT_EQ(sdk.invariants().devicesOpen, 1);
  EXPECT_EQ(sdk.invariants().streamsRunning, 1);

  // The device stays open in the SDK, as after a crash of a host. The reset stands for plugging it
  // in again.
  sdk.reset();
  sdk.setCameras({camera()});
  LibraryUnderTest again;
  EXPECT_EQ(again.width(), 0);
  EXPECT_EQ(again.buffer_size(), 0);
  EXPECT_STREQ(again.libraries(), "");
  EXPECT_STREQ(again.error(), "");
  EXPECT_STREQ(again.info(0), "{}");
  stream(again, directory);
  again.close();
  expectClean(sdk);
}

TEST_P(Unload, AfterACloseRepeatedlyLeavesNothingOpen) {
  const SimulatedSdk sdk = install(GetParam());
  sdk.setCameras({camera()});
  oc.unload();
  for (int i = 0; i < 10; ++i) {
    LibraryUnderTest next;
    stream(next, directory);
    next.close();
    next.unload();
  }
  expectClean(sdk);
}

TEST_P(Unload, KeepsTheSdkLoaded) {
  directory.add(GetParam());
  EXPECT_FALSE(isLoaded(directory.file(GetParam())));
  EXPECT_GE(oc.scan(), 2);
  oc.unload();
  EXPECT_TRUE(isLoaded(directory.file(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(Sdks, Unload, ::testing::ValuesIn(sdkNames),
                         [](const auto& instance) { return std::string(instance.param); });

void expectOpenFails(const LibraryUnderTest& library) {
  EXPECT_EQ(library.open(-1, 320, 202, 1, 0, 20000, 100, 5), 0);
  EXPECT_STREQ(library.error(), "Camera not found; rescan");
}

// What the runtime leaks at each unload adds up: on Windows, one leaked slot of thread-local
// storage per unload ends the process at the 1085th.
TEST(UnloadFresh, RepeatedUnloadsAfterFailuresLeakNothing) {
  const auto useOnce = [] {
    LibraryUnderTest library;
    expectOpenFails(library);
    library.unload();
  };
  for (int i = 0; i < 50; ++i) {
    useOnce();
  }
  const std::size_t handlesBefore = openHandles();
  const std::size_t bytesBefore = heapBytes();
  constexpr std::size_t times = 1200;
  for (std::size_t i = 0; i < times; ++i) {
    useOnce();
  }
  EXPECT_EQ(openHandles(), handlesBefore);
  // The system's loader may keep a little memory.
  EXPECT_LT(heapBytes(), bytesBefore + 100 * times);
}

TEST(UnloadFresh, AfterFailuresInEndedAndRunningThreads) {
  for (int i = 0; i < 20; ++i) {
    LibraryUnderTest library;
    const auto fail = [&] { expectOpenFails(library); };
    std::thread(fail).join();
    std::promise<void> hasFailed;
    std::promise<void> isUnloaded;
    std::thread stays([&] {
      fail();
      hasFailed.set_value();
      isUnloaded.get_future().wait();
    });
    hasFailed.get_future().wait();
    fail();
    library.unload();
    isUnloaded.set_value();
    stays.join();
  }
}

#ifdef _WIN32
// Without a slot, all threads share one record of the exceptions in flight.
TEST(UnloadFresh, InAProcessWithoutAFreeFiberLocalSlot) {
  std::vector<DWORD> slots;
  for (DWORD slot = 0; (slot = FlsAlloc(nullptr)) != FLS_OUT_OF_INDEXES;) {
    slots.push_back(slot);
  }
  ASSERT_FALSE(slots.empty());
  for (int i = 0; i < 5; ++i) {
    LibraryUnderTest library;
    const auto fail = [&] {
      expectOpenFails(library);
      EXPECT_EQ(library.read(nullptr, 0, 0), -1);
      EXPECT_STREQ(library.error(), "Camera closed or buffer too small");
    };
    fail();
    std::thread(fail).join();
    fail();
    EXPECT_EQ(FlsAlloc(nullptr), FLS_OUT_OF_INDEXES);
    library.unload();
  }
  for (const DWORD slot : slots) {
    EXPECT_TRUE(FlsFree(slot));
  }
}
#endif

}  // namespace
}  // namespace orvane::testing
