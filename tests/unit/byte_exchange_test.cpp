// Exchanging the first and third byte of pixels.
#include "capture/byte_exchange.hpp"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

using orvane::exchangeRedAndBlue;

TEST(ByteExchange, FirstAndThirdByteOfEveryPixelChangePlaces) {
  std::vector<std::uint8_t> pixels{1, 2, 3, 4, 5, 6};
  exchangeRedAndBlue(pixels.data(), pixels.size());
  EXPECT_EQ(pixels, (std::vector<std::uint8_t>{3, 2, 1, 6, 5, 4}));
}

TEST(ByteExchange, NothingIsTouchedForALengthOfZero) {
  std::vector<std::uint8_t> pixels{1, 2, 3};
  exchangeRedAndBlue(pixels.data(), 0);
  EXPECT_EQ(pixels, (std::vector<std::uint8_t>{1, 2, 3}));
}

TEST(ByteExchange, AGroupThatStartsBelowTheLengthIsExchangedWhole) {
  std::vector<std::uint8_t> pixels{1, 2, 3, 4, 5, 6, 7, 8, 9};
  exchangeRedAndBlue(pixels.data(), 4);
  EXPECT_EQ(pixels, (std::vector<std::uint8_t>{3, 2, 1, 6, 5, 4, 7, 8, 9}));
}

TEST(ByteExchange, EveryLengthAndStartLeavesItsNeighboursAlone) {
  for (std::size_t start = 0; start < 40; ++start) {
    for (std::size_t length = 0; length <= 300; length += 3) {
      std::vector<std::uint8_t> actual(start + length + 40);
      std::iota(actual.begin(), actual.end(), std::uint8_t{7});
      std::vector<std::uint8_t> expected = actual;
      for (std::size_t i = start; i < start + length; i += 3) {
        std::swap(expected[i], expected[i + 2]);
      }
      exchangeRedAndBlue(actual.data() + start, length);
      ASSERT_EQ(actual, expected) << "start " << start << ", length " << length;
    }
  }
}
