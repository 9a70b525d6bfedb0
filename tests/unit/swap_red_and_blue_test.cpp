// Swaps the first and third byte of pixels, with every implementation that this processor supports.
#include "vendors/swap_red_and_blue.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/guarded_memory.hpp"

namespace orvane {
namespace {

// The reference implementation.
void swapByTheRule(std::uint8_t* pixels, std::size_t byteCount) {
  for (std::size_t i = 0; i < byteCount; i += 3) {
    std::swap(pixels[i], pixels[i + 2]);
  }
}

// Bytes that differ from their neighbours and from bytes further away.
std::vector<std::uint8_t> testBytes(std::size_t size) {
  std::vector<std::uint8_t> bytes(size);
  for (std::size_t i = 0; i < size; ++i) {
    bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 251);
  }
  return bytes;
}

constexpr std::size_t wholeGroups(std::size_t byteCount) {
  return (byteCount + 2) / 3 * 3;
}

class SwapRedAndBlue : public ::testing::TestWithParam<SwapImplementation> {
 protected:
  void SetUp() override {
    if (!isSupported(GetParam())) {
      GTEST_SKIP() << "not supported by this processor";
    }
  }

  void check(std::size_t start, std::size_t length) {
    constexpr std::size_t margin = 40;
    std::vector<std::uint8_t> actual = testBytes(start + wholeGroups(length) + margin);
    std::vector<std::uint8_t> expected = actual;
    swapByTheRule(expected.data() + start, length);
    swapRedAndBlue(GetParam(), actual.data() + start, length);
    ASSERT_EQ(actual, expected) << "start " << start << ", length " << length;
  }
};

TEST_P(SwapRedAndBlue, EveryLengthFromManyStartsLeavesItsNeighboursAlone) {
  for (std::size_t start = 0; start < 64; ++start) {
    for (std::size_t length = 0; length <= 700; ++length) {
      check(start, length);
    }
  }
}

TEST_P(SwapRedAndBlue, LargeFramesAtAlignedAndOddAddresses) {
  for (const std::size_t length : {640U * 480 * 3, 1936U * 1096 * 3, 100003U}) {
    for (const std::size_t start : {0U, 1U, 31U}) {
      check(start, length);
    }
  }
}

TEST_P(SwapRedAndBlue, NothingBesideTheBufferIsTouched) {
  const GuardedMemory memory(4096);
  for (std::size_t length = 0; length <= 700; ++length) {
    const std::size_t size = wholeGroups(length);
    const std::vector<std::uint8_t> original = testBytes(size);
    std::vector<std::uint8_t> expected = original;
    swapByTheRule(expected.data(), length);
    for (std::uint8_t* const pixels : {memory.begin(), memory.end() - size}) {
      std::copy(original.begin(), original.end(), pixels);
      swapRedAndBlue(GetParam(), pixels, length);
      ASSERT_EQ(std::vector<std::uint8_t>(pixels, pixels + size), expected) << length;
    }
  }
}

std::string nameOf(const ::testing::TestParamInfo<SwapImplementation>& instance) {
  const char* const names[] = {"Scalar", "Ssse3"};
  return names[static_cast<int>(instance.param)];
}

INSTANTIATE_TEST_SUITE_P(Implementations, SwapRedAndBlue,
                         ::testing::Values(SwapImplementation::Scalar, SwapImplementation::Ssse3),
                         nameOf);

TEST(SwapRedAndBlueChoice, IsSupportedAndUsed) {
  EXPECT_TRUE(isSupported(fastestSwap()));
  EXPECT_TRUE(isSupported(SwapImplementation::Scalar));
  EXPECT_EQ(fastestSwap() == SwapImplementation::Ssse3, isSupported(SwapImplementation::Ssse3));
  std::vector<std::uint8_t> pixels{1, 2, 3, 4, 5, 6};
  swapRedAndBlue(pixels.data(), pixels.size());
  EXPECT_EQ(pixels, (std::vector<std::uint8_t>{3, 2, 1, 6, 5, 4}));
}

TEST(SwapRedAndBlueChoice, AGroupThatStartsBelowTheLengthIsSwappedWhole) {
  std::vector<std::uint8_t> pixels{1, 2, 3, 4, 5, 6, 7, 8, 9};
  swapRedAndBlue(pixels.data(), 4);
  EXPECT_EQ(pixels, (std::vector<std::uint8_t>{3, 2, 1, 6, 5, 4, 7, 8, 9}));
}

}  // namespace
}  // namespace orvane
