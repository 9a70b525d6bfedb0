// Endurance: many sessions and many reads must not use more and more memory or time. The default is
// short. ORVANE_SOAK_CYCLES and ORVANE_SOAK_READS set other lengths. ORVANE_SOAK_RATIO sets, in
// percent, how long the last tenth may take compared with the first.
#include <algorithm>
#include <chrono>
#include <iostream>

#include "doubles/sdk_families.hpp"
#include "library/library_test.hpp"
#include "support/process_usage.hpp"
#include "torture/run_length.hpp"

namespace orvane::testing {
namespace {

struct Usage {
  std::size_t resident = residentBytes();
  std::size_t heap = heapBytes();
  std::size_t handles = openHandles();
};

long grown(std::size_t before, std::size_t after) {
  return static_cast<long>(after) - static_cast<long>(before);
}

class Endurance : public LibraryTest, public ::testing::WithParamInterface<SdkFamily> {
 protected:
  Endurance() : family_(GetParam()), sdk_(install(family_.baseName)) {
    camera_ = torturedCamera(family_);
    camera_.width = 8;
    camera_.height = 32;
    sdk_.setCameras({camera_});
    sdk_.log_enable(0);
    EXPECT_EQ(oc.scan(), 1) << error();
  }

  void open() {
    ASSERT_EQ(oc.open(0, camera_.width, camera_.height, 1, family_.richFormat, exposureUs, 100, 5),
              1)
        << error();
  }

  void read() {
    sdk_.advance_clock(family_.waitsForFrames ? 0 : 10L * exposureUs);
    const int bytes = oc.read(frame.data(), static_cast<int>(frame.size()), 540);
    ASSERT_EQ(bytes, oc.width() * oc.height() * bytesPerPixel()) << error();
  }

  int bytesPerPixel() const { return family_.richFormat == 2 ? 3 : 2; }

  // Runs the body `times` times and compares the usage of the process with that after a warm-up,
  // which covers everything that is allocated only once.
  template <class Body>
  void endure(const char* what, long times, long handleBytes, Body body) {
    ASSERT_GE(times, 20);
    for (long i = 0; i < std::min<long>(times, 1000); ++i) {
      ASSERT_NO_FATAL_FAILURE(body());
    }
    const Usage before;
    using Clock = std::chrono::steady_clock;
    std::vector<double> tenths;
    const long perTenth = times / 10;
    for (int tenth = 0; tenth < 10; ++tenth) {
      const Clock::time_point start = Clock::now();
      for (long i = 0; i < perTenth; ++i) {
        ASSERT_NO_FATAL_FAILURE(body());
      }
      tenths.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count() /
                       static_cast<double>(perTenth));
    }
    const Usage after;
    const double ratio = tenths.back() / tenths.front();
    const long heap = grown(before.heap, after.heap);
    std::cout << "endurance|" << family_.baseName << "|" << times << " " << what << "|"
              << tenths.front() << "|" << tenths.back() << "|" << ratio << "|"
              << grown(before.resident, after.resident) << "|" << heap << "|"
              << grown(before.handles, after.handles) << "\n"
              << std::flush;

    EXPECT_EQ(after.handles, before.handles);
    // A simulated SDK keeps every handle, to detect calls on closed ones.
    constexpr long slack = 64L * 1024;
    EXPECT_LE(heap, slack * heapUnit + handleBytes * times);
    EXPECT_LE(grown(before.resident, after.resident), 8L * 1024 * 1024);
    if (const long most = chosen("ORVANE_SOAK_RATIO", 0); most > 0) {
      EXPECT_LE(ratio * 100, static_cast<double>(most));
    }
  }

#ifdef _WIN32
  static constexpr long heapUnit = 32;  // the heap grows in larger steps
#else
  static constexpr long heapUnit = 1;
#endif
  static constexpr int exposureUs = 1000;

  SdkFamily family_;
  SimulatedSdk sdk_;
  SimCamera camera_{};
};

TEST_P(Endurance, OpenReadCloseAgainAndAgain) {
  const bool hasHandles = family_.givesHandle;
  endure("sessions", chosen("ORVANE_SOAK_CYCLES", 200), hasHandles ? 24 : 0, [&] {
    open();
    frame.resize(static_cast<std::size_t>(oc.buffer_size()));
    read();
    oc.close();
  });
  expectClean(sdk_);
}

TEST_P(Endurance, ReadAgainAndAgain) {
  open();
  frame.resize(static_cast<std::size_t>(oc.buffer_size()));
  endure("reads", chosen("ORVANE_SOAK_READS", 5000), 0, [&] { read(); });
  oc.close();
  expectClean(sdk_);
}

INSTANTIATE_TEST_SUITE_P(Sdks, Endurance, ::testing::ValuesIn(sdkFamilies),
                         [](const auto& instance) { return std::string(instance.param.baseName); });

}  // namespace
}  // namespace orvane::testing
