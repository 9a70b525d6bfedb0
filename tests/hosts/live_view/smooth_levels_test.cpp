// Pictures of few bits without visible steps.
#include "live_view/smooth_levels.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <set>

#include "synthetic_frame.hpp"

namespace orvane::host {

namespace {

using orvane::testing::grain;

// An image of 8 bits.
Image imageOf(int width, int height, int channels,
              const std::function<double(int x, int y, int channel)>& brightness) {
  Image image{width, height, channels, {}};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      for (int channel = 0; channel < channels; ++channel) {
        image.samples.push_back(
            static_cast<std::uint16_t>(byteStep * static_cast<int>(brightness(x, y, channel))));
      }
    }
  }
  return image;
}

Image smoothed(Image image) {
  smoothLevels(image);
  return image;
}

int sampleOf(const Image& image, int x, int y, int channel = 0) {
  const int index = (y * image.width + x) * image.channels + channel;
  return image.samples.at(static_cast<std::size_t>(index));
}

TEST(SmoothLevels, AnEvenSlopeHasManyLevels) {
  for (const bool across : {true, false}) {
    const Image image = smoothed(imageOf(96, 96, 1, [across](int x, int y, int) {
      return 20 + std::floor((across ? x : y) / 16.0);
    }));
    std::set<int> levels;
    for (int at = 20; at < 76; ++at) {
      const int sample = across ? sampleOf(image, at, 48) : sampleOf(image, 48, at);
      const int after = across ? sampleOf(image, at + 1, 48) : sampleOf(image, 48, at + 1);
      levels.insert(sample);
      EXPECT_LE(std::abs(after - sample), byteStep / 2) << at;  // it was a whole step
      EXPECT_GE(after - sample, 0) << at;
    }
    EXPECT_GE(levels.size(), 12U);  // without: 4
  }
}

TEST(SmoothLevels, NoSampleMovesByMoreThanHalfAStep) {
  const Image before =
      imageOf(80, 60, 3, [](int x, int y, int channel) { return 60 + 40 * grain(x + channel, y); });
  const Image after = smoothed(before);
  for (std::size_t at = 0; at < before.samples.size(); ++at) {
    ASSERT_LE(std::abs(before.samples[at] - after.samples[at]), byteStep / 2);
  }
}

TEST(SmoothLevels, NoiseOfOneStepIsAveraged) {
  const Image before =
      imageOf(64, 64, 1, [](int x, int y, int) { return grain(x, y) > 0 ? 11 : 10; });
  const Image after = smoothed(before);
  const auto roughness = [](const Image& image) {
    int sum = 0;
    for (int x = 10; x < 50; ++x) {
      sum += std::abs(sampleOf(image, x + 1, 30) - sampleOf(image, x, 30));
    }
    return sum;
  };
  EXPECT_LT(roughness(after), roughness(before) / 2);
}

TEST(SmoothLevels, AStarHasNoHaloAndKeepsItsPeak) {
  const Image after =
      smoothed(imageOf(40, 40, 1, [](int x, int y, int) { return x == 20 && y == 20 ? 200 : 10; }));
  EXPECT_EQ(sampleOf(after, 20, 20) / byteStep, 200);
  for (const int distance : {1, 2, 3, 9}) {
    EXPECT_NEAR(sampleOf(after, 20 + distance, 20), 10 * byteStep, 1);
    EXPECT_NEAR(sampleOf(after, 20, 20 - distance), 10 * byteStep, 1);
  }
}

TEST(SmoothLevels, ChannelsDoNotMix) {
  const Image after =
      smoothed(imageOf(30, 30, 3, [](int, int, int channel) { return channel == 1 ? 51 : 50; }));
  for (int x = 0; x < 30; ++x) {
    EXPECT_NEAR(sampleOf(after, x, 15, 0), 50 * byteStep, 1);
    EXPECT_NEAR(sampleOf(after, x, 15, 1), 51 * byteStep, 1);
  }
}

TEST(SmoothLevels, TinyAndEmptyImagesStay) {
  EXPECT_TRUE(smoothed({0, 0, 3, {}}).samples.empty());
  EXPECT_NEAR(smoothed({1, 1, 1, {2570}}).samples.front(), 2570, 1);
  EXPECT_NEAR(smoothed({1, 1, 1, {65535}}).samples.front(), 65535, 1);
}

}  // namespace

}  // namespace orvane::host
