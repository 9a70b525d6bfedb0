// Statistics and histograms of a frame's samples, and which of them are saturated.
#include "imaging/statistics.hpp"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace orvane::host {

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes words(const std::vector<int>& samples) {
  Bytes bytes;
  for (const int sample : samples) {
    bytes.push_back(static_cast<std::uint8_t>(sample % 256));
    bytes.push_back(static_cast<std::uint8_t>(sample / 256));
  }
  return bytes;
}

int fullScaleOf(int bitDepth, const std::vector<int>& samples) {
  SampleRange range(PixelFormat::Raw16, bitDepth);
  range.add(words(samples));
  return range.fullScale();
}

TEST(SampleRange, OfBytesIsKnown) {
  SampleRange range(PixelFormat::Raw8, 12);
  range.add(std::vector<std::uint8_t>{1, 2, 3});
  EXPECT_EQ(range.fullScale(), 255);
}

TEST(SampleRange, FindsSamplesInTheUpperBits) {
  EXPECT_EQ(fullScaleOf(12, {16, 48, 1024, 4080}), 0xFFF0);
  EXPECT_EQ(fullScaleOf(14, {4, 65532}), 0xFFFC);
}

TEST(SampleRange, FindsSamplesInTheLowerBits) {
  EXPECT_EQ(fullScaleOf(12, {17, 48, 4095}), 4095);
  EXPECT_EQ(fullScaleOf(10, {1, 2, 3}), 1023);
}

TEST(SampleRange, OfAveragedSamplesIsThatOfTheUpperBits) {
  EXPECT_EQ(fullScaleOf(12, {17, 4096}), 0xFFF0);
  EXPECT_EQ(fullScaleOf(12, {0, 0}), 0xFFF0);  // samples that show nothing
}

TEST(SampleRange, OfOtherDepthsIsWhole) {
  EXPECT_EQ(fullScaleOf(16, {17, 40}), 65535);
  EXPECT_EQ(fullScaleOf(0, {1}), 65535);
  EXPECT_EQ(fullScaleOf(99, {1}), 65535);
}

TEST(SampleRange, ExaminesEverySample) {
  std::vector<int> samples(1000000, 16);
  EXPECT_EQ(fullScaleOf(12, samples), 0xFFF0);
  samples[123457] = 17;
  EXPECT_EQ(fullScaleOf(12, samples), 4095);
}

TEST(SampleRange, RemembersEarlierFrames) {
  SampleRange range(PixelFormat::Raw16, 12);
  range.add(words({17, 33}));
  EXPECT_EQ(range.fullScale(), 4095);
  range.add(words({16, 32}));
  EXPECT_EQ(range.fullScale(), 4095);
  range.add(words({8192}));
  EXPECT_EQ(range.fullScale(), 0xFFF0);
}

FrameLayout row(int width, PixelFormat format) {
  return {width, 1, format, BayerPattern::None};
}

TEST(FrameStatistics, OfEightBits) {
  const auto statistics = frameStatistics(Bytes{3, 255, 255, 7}, row(4, PixelFormat::Raw8), 12);
  EXPECT_DOUBLE_EQ(statistics.mean, 130);
  EXPECT_EQ(statistics.smallest, 3);
  EXPECT_EQ(statistics.largest, 255);
  EXPECT_EQ(statistics.saturated, 2);
  EXPECT_EQ(frameStatistics(Bytes{254}, row(1, PixelFormat::Mono8), 12).saturated, 0);
}

TEST(FrameStatistics, CountsPixelsOfRgbOnce) {
  const auto statistics =
      frameStatistics(Bytes{255, 255, 0, 1, 2, 255, 9, 9, 9}, row(3, PixelFormat::Rgb24), 8);
  EXPECT_EQ(statistics.saturated, 2);
  EXPECT_EQ(statistics.smallest, 0);
}

TEST(FrameStatistics, OfSixteenBitsShiftedUp) {
  const auto statistics =
      frameStatistics(words({0xfff0, 0xffe0, 16, 0}), row(4, PixelFormat::Raw16), 12);
  EXPECT_DOUBLE_EQ(statistics.mean, (0xfff0 + 0xffe0 + 16) / 4.0);
  EXPECT_EQ(statistics.largest, 0xfff0);
  EXPECT_EQ(statistics.saturated, 1);
}

TEST(FrameStatistics, OfSixteenBitsAtTheLowEnd) {
  EXPECT_EQ(frameStatistics(words({4095, 4094, 4095}), row(3, PixelFormat::Raw16), 12).saturated,
            2);
  EXPECT_EQ(frameStatistics(words({4094}), row(1, PixelFormat::Raw16), 12).saturated, 0);
  EXPECT_EQ(frameStatistics(words({65535, 65534}), row(2, PixelFormat::Raw16), 16).saturated, 1);
  // An impossible depth counts as 16.
  EXPECT_EQ(frameStatistics(words({65535}), row(1, PixelFormat::Raw16), 99).saturated, 1);
}

TEST(FrameStatistics, OfNothing) {
  EXPECT_EQ(frameStatistics({}, row(0, PixelFormat::Raw8), 8).saturated, 0);
}

// Both use one rule, also for the averaged samples of a binned 12-bit camera.
TEST(Saturation, IsTheSameInStatisticsAndHistogram) {
  const FrameLayout layout = row(4, PixelFormat::Raw16);
  for (const Bytes& frame : {words({0xfff0, 0xfff0, 0xffe0, 16}), words({4095, 4095, 4094, 1}),
                             words({0xfff3, 0xfff0, 0xffef, 4})}) {
    SampleRange range(PixelFormat::Raw16, 12);
    range.add(frame);
    EXPECT_EQ(frameStatistics(frame, layout, 12).saturated, 2);
    EXPECT_DOUBLE_EQ(histogramOf(frame, layout, range.fullScale()).saturated, 0.5);
  }
}

TEST(Histogram, CountsEverySampleOfASmallFrame) {
  const std::vector<std::uint8_t> frame = {0, 7, 7, 255, 255, 100};
  const Histogram histogram =
      histogramOf(frame, {3, 2, PixelFormat::Mono8, BayerPattern::None}, 255);
  EXPECT_EQ(histogram.channels, 1);
  const ChannelHistogram& grey = histogram.channel[0];
  EXPECT_EQ(grey.bins[0], 1U);
  EXPECT_EQ(grey.bins[7], 2U);
  EXPECT_EQ(grey.bins[100], 1U);
  EXPECT_EQ(grey.bins[255], 2U);
  EXPECT_EQ(std::accumulate(grey.bins.begin(), grey.bins.end(), 0U), 6U);
  EXPECT_EQ(grey.smallest, 0);
  EXPECT_EQ(grey.largest, 255);
  EXPECT_DOUBLE_EQ(grey.mean, 624.0 / 6);
  EXPECT_DOUBLE_EQ(histogram.saturated, 2.0 / 6);
}

TEST(Histogram, TheMedianIsTheSampleInTheMiddle) {
  const auto medianOf = [](const std::vector<int>& samples) {
    const FrameLayout layout = row(static_cast<int>(samples.size()), PixelFormat::Raw16);
    return histogramOf(words(samples), layout, 65535).channel[0].median;
  };
  EXPECT_EQ(medianOf({9}), 9);
  EXPECT_EQ(medianOf({40000, 3, 500}), 500);
  EXPECT_EQ(medianOf({40000, 3, 500, 700}), 700);
  EXPECT_EQ(medianOf({0, 0, 0, 65535}), 0);
  EXPECT_EQ(medianOf({0, 65535, 65535}), 65535);
}

TEST(Histogram, BinsAreEqualPartsOfTheFullScale) {
  const Histogram histogram =
      histogramOf(words({0, 15, 16, 4095}), {4, 1, PixelFormat::Raw16, BayerPattern::None}, 4095);
  EXPECT_EQ(histogram.channel[0].bins[0], 2U);
  EXPECT_EQ(histogram.channel[0].bins[1], 1U);
  EXPECT_EQ(histogram.channel[0].bins[255], 1U);
  EXPECT_EQ(histogram.fullScale, 4095);
  EXPECT_DOUBLE_EQ(histogram.saturated, 0.25);
}

TEST(Histogram, SamplesBeyondTheFullScaleAreInTheLastBin) {
  const Histogram histogram =
      histogramOf(words({5000}), {1, 1, PixelFormat::Raw16, BayerPattern::None}, 4095);
  EXPECT_EQ(histogram.channel[0].bins[255], 1U);
  EXPECT_EQ(histogram.channel[0].largest, 5000);
}

class EveryBayerPatternCounted : public ::testing::TestWithParam<BayerPattern> {};

TEST_P(EveryBayerPatternCounted, ColoursApart) {
  const std::string name = bayerName(GetParam());
  std::vector<std::uint8_t> frame;
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 4; ++x) {
      const char colour = name[static_cast<std::size_t>(2 * (y % 2) + x % 2)];
      frame.push_back(colour == 'R' ? 10 : colour == 'G' ? 20 : 30);
    }
  }
  const Histogram histogram = histogramOf(frame, {4, 4, PixelFormat::Raw8, GetParam()}, 255);
  EXPECT_EQ(histogram.channels, 3);
  EXPECT_EQ(histogram.channel[0].bins[10], 4U);
  EXPECT_EQ(histogram.channel[1].bins[20], 8U);
  EXPECT_EQ(histogram.channel[2].bins[30], 4U);
  EXPECT_DOUBLE_EQ(histogram.channel[1].mean, 20);
}

INSTANTIATE_TEST_SUITE_P(Histogram, EveryBayerPatternCounted,
                         ::testing::Values(BayerPattern::Rggb, BayerPattern::Grbg,
                                           BayerPattern::Gbrg, BayerPattern::Bggr),
                         [](const auto& test) { return bayerName(test.param); });

TEST(Histogram, OfRgbHasThreeChannels) {
  const Histogram histogram = histogramOf(std::vector<std::uint8_t>{1, 2, 3, 4, 5, 6},
                                          {2, 1, PixelFormat::Rgb24, BayerPattern::None}, 255);
  EXPECT_EQ(histogram.channel[0].largest, 4);
  EXPECT_EQ(histogram.channel[1].largest, 5);
  EXPECT_EQ(histogram.channel[2].smallest, 3);
}

TEST(Histogram, LargeFramesAreSampledEvenly) {
  const FrameLayout layout{3000, 2000, PixelFormat::Raw8, BayerPattern::Rggb};
  std::vector<std::uint8_t> frame(6000000);
  for (std::size_t index = 0; index < frame.size(); ++index) {
    const std::size_t x = index % 3000;
    const std::size_t y = index / 3000;
    frame[index] = static_cast<std::uint8_t>(y % 2 == 0 && x % 2 == 0 ? 10
                                             : y % 2 == x % 2         ? 30
                                                                      : 20);
  }
  const Histogram histogram = histogramOf(frame, layout, 255);
  EXPECT_DOUBLE_EQ(histogram.channel[0].mean, 10);
  EXPECT_DOUBLE_EQ(histogram.channel[1].mean, 20);
  EXPECT_DOUBLE_EQ(histogram.channel[2].mean, 30);
  EXPECT_GT(histogram.channel[0].bins[10], 50000U);
  EXPECT_LT(histogram.channel[0].bins[10], 200000U);
}

TEST(Histogram, OfNothingIsEmpty) {
  const Histogram histogram = histogramOf({}, {0, 0, PixelFormat::Raw8, BayerPattern::None}, 255);
  EXPECT_EQ(histogram.channel[0].smallest, 0);
  EXPECT_EQ(histogram.channel[0].largest, 0);
  EXPECT_EQ(histogram.saturated, 0);
}

}  // namespace

}  // namespace orvane::host
