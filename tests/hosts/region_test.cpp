// A region anywhere in a frame.
#include "imaging/region.hpp"

#include <gtest/gtest.h>

#include <vector>

#include "imaging/frame_correction.hpp"
#include "system/failures.hpp"

namespace orvane::host {

namespace {

using Bytes = std::vector<std::uint8_t>;

// A frame whose bytes count up from 0.
Bytes countingFrame(const FrameLayout& layout) {
  Bytes frame(frameBytes(layout));
  for (std::size_t at = 0; at < frame.size(); ++at) {
    frame[at] = static_cast<std::uint8_t>(at);
  }
  return frame;
}

TEST(Region, IsInsideAFrameOnlyWithAllItsPixels) {
  EXPECT_TRUE((Region{0, 0, 4, 3}.isInside(4, 3)));
  EXPECT_TRUE((Region{3, 2, 1, 1}.isInside(4, 3)));
  EXPECT_FALSE((Region{1, 0, 4, 3}.isInside(4, 3)));
  EXPECT_FALSE((Region{0, 1, 4, 3}.isInside(4, 3)));
  EXPECT_FALSE((Region{-1, 0, 2, 2}.isInside(4, 3)));
  EXPECT_FALSE((Region{0, -1, 2, 2}.isInside(4, 3)));
  EXPECT_FALSE((Region{0, 0, 0, 2}.isInside(4, 3)));
  EXPECT_FALSE((Region{0, 0, 2, 0}.isInside(4, 3)));
  EXPECT_FALSE((Region{2147483647, 0, 2147483647, 1}.isInside(4, 3)));
}

TEST(Region, ItsRowsAreMovedToTheStart) {
  for (const PixelFormat format :
       {PixelFormat::Raw8, PixelFormat::Raw16, PixelFormat::Rgb24, PixelFormat::Mono8}) {
    const FrameLayout layout{7, 5, format, BayerPattern::None};
    const std::size_t pixel = frameBytes({1, 1, format, BayerPattern::None});
    for (const Region& region : {Region{0, 0, 7, 5}, Region{0, 0, 3, 2}, Region{6, 4, 1, 1},
                                 Region{1, 1, 6, 4}, Region{2, 0, 4, 5}}) {
      const Bytes whole = countingFrame(layout);
      Bytes expected;
      for (int y = 0; y < region.height; ++y) {
        for (std::size_t byte = 0; byte < pixel * static_cast<std::size_t>(region.width); ++byte) {
          expected.push_back(
              whole[pixel * pixelIndex(layout.width, region.left, region.top + y) + byte]);
        }
      }
      Bytes frame = whole;
      const std::span<std::uint8_t> cut = cutOut(region, frame, layout);
      EXPECT_EQ(cut.data(), frame.data());
      EXPECT_EQ(Bytes(cut.begin(), cut.end()), expected) << regionText(region);
    }
  }
}

TEST(Region, IsReadAsItIsWritten) {
  EXPECT_EQ(regionValue({10, 20, 640, 480}), "10,20,640x480");
  EXPECT_EQ(regionFromValue("10,20,640x480"), (Region{10, 20, 640, 480}));
  for (const char* text : {"", "10,20", "10,20,640", "10,20,640x", "10,20,640x480 ", "10,20,0x480",
                           "10,20,640x0", "-1,20,640x480", "10;20,640x480", "10,20,640,480",
                           " 10,20,640x480", "10,20,640x99999999999"}) {
    EXPECT_EQ(regionFromValue(text), std::nullopt) << text;
  }
}

// The colour of each pixel of the region is its colour in the frame.
TEST(Region, ItsBayerPatternFollowsItsStart) {
  for (const BayerPattern bayer :
       {BayerPattern::Rggb, BayerPattern::Grbg, BayerPattern::Gbrg, BayerPattern::Bggr}) {
    for (const int left : {4, 5}) {
      for (const int top : {2, 3}) {
        const FrameLayout frame{16, 16, PixelFormat::Raw16, bayer};
        const FrameLayout cut = layoutOf({left, top, 8, 6}, frame);
        EXPECT_EQ(cut.width, 8);
        EXPECT_EQ(cut.height, 6);
        EXPECT_EQ(cut.format, PixelFormat::Raw16);
        for (int y = 0; y < 2; ++y) {
          for (int x = 0; x < 2; ++x) {
            const auto place = [](int column, int row) {
              return static_cast<std::size_t>(2 * (row % 2) + column % 2);
            };
            EXPECT_EQ(bayerName(cut.bayer)[place(x, y)], bayerName(bayer)[place(left + x, top + y)])
                << bayerName(bayer) << " from " << left << ", " << top;
          }
        }
      }
    }
  }
  EXPECT_EQ(layoutOf({1, 1, 2, 2}, {8, 8, PixelFormat::Raw8, BayerPattern::None}).bayer,
            BayerPattern::None);
}

// Every maker's SDK delivers these sizes unchanged: ZWO's SDK rounds to 8 x 2, ToupTek's SDK needs
// 16 x 16.
TEST(Region, TheCornerThatHoldsItIsRoundedUp) {
  const auto corner = [](const Region& region) {
    const CornerSize size = cornerHolding(region, 1000, 801);
    return std::pair(size.width, size.height);
  };
  EXPECT_EQ(corner({10, 20, 640, 480}), std::pair(656, 500));
  EXPECT_EQ(corner({11, 21, 640, 480}), std::pair(656, 502));
  EXPECT_EQ(corner({0, 0, 1, 1}), std::pair(16, 16));
  EXPECT_EQ(corner({999, 800, 1, 1}), std::pair(1000, 801));
}

TEST(FrameCorrection, CutsTheRegionBeforeItFlips) {
  const FrameLayout layout{4, 4, PixelFormat::Raw8, BayerPattern::Rggb};
  const FrameCorrection correction{true, false, {}, Region{1, 0, 2, 3}};
  Bytes frame = countingFrame(layout);
  const std::span<std::uint8_t> cut = correctFrame(frame, layout, correction);
  EXPECT_EQ(Bytes(cut.begin(), cut.end()), (Bytes{9, 10, 5, 6, 1, 2}));
  // The last of three rows has the colours of the first.
  EXPECT_EQ(correctedLayout(layout, correction).bayer, BayerPattern::Grbg);
}

TEST(FrameCorrection, RefusesARegionOutsideTheFrame) {
  const FrameLayout layout{4, 4, PixelFormat::Raw8, BayerPattern::None};
  try {
    correctedLayout(layout, {false, false, {}, Region{3, 1, 2, 3}});
    ADD_FAILURE() << "nothing was thrown";
  } catch (const UsageError& error) {
    EXPECT_STREQ(error.what(), "The region 2 x 3 at 3, 1 is not inside the frame of 4 x 4.");
  }
}

}  // namespace

}  // namespace orvane::host
