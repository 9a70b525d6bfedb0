// Calls on a streaming camera must not allocate. This program replaces operator new, which the
// library and the SDKs also use, with one that counts.
#include <atomic>
#include <cstdlib>
#include <new>

#include "library/family_test.hpp"

namespace {

std::atomic<long> allocations{0};

}  // namespace

// The standard library's other forms call these.
void* operator new(std::size_t size) {
  ++allocations;
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace orvane::testing {
namespace {

class Allocations : public AsiTest {
 protected:
  // Counts the allocations of one call.
  template <class Body>
  static long during(Body body) {
    const long before = allocations;
    body();
    return allocations - before;
  }

  void startSession(int format) {
    openSmall(format);
    sdk.log_enable(0);
    ASSERT_GT(readFrame(), 0);  // not counted: the SDK may allocate for the first frame
  }
};

TEST_F(Allocations, OfTheLibraryAreCounted) {
  ASSERT_EQ(oc.scan(), 1);
  EXPECT_GT(during([&] { oc.info(0); }), 0);
}

TEST_F(Allocations, NoneInASuccessfulRead) {
  for (const int format : {0, 1, 2, 3}) {
    startSession(format);
    EXPECT_EQ(during([&] {
                for (int i = 0; i < 100; ++i) {
                  ASSERT_GT(oc.read(frame.data(), static_cast<int>(frame.size()), 1000), 0);
                }
              }),
              0)
        << "format " << format;
    oc.close();
    sdk.log_enable(1);
  }
}

TEST_F(Allocations, NoneWhenNoFrameIsReady) {
  startSession(0);
  EXPECT_EQ(during([&] { EXPECT_EQ(oc.read(frame.data(), static_cast<int>(frame.size()), 0), 0); }),
            0);
}

TEST_F(Allocations, NoneInApplyAndTemperature) {
  startSession(0);
  EXPECT_EQ(during([&] { EXPECT_EQ(oc.apply(20000, 10, 5), 1); }), 0);
  EXPECT_EQ(during([&] { oc.temperature(); }), 0);
}

}  // namespace
}  // namespace orvane::testing
