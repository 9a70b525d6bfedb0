// "--region": a part of each frame, from the cameras of each maker, against the same part of their
// whole frames.
#include <array>
#include <nlohmann/json.hpp>
#include <tuple>

#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

using nlohmann::ordered_json;

struct Size {
  int width = 0;
  int height = 0;
};

// The part of a frame, pixel by pixel.
Bytes partOf(const Bytes& frame, int frameWidth, int pixelBytes, int left, int top, Size part) {
  Bytes bytes;
  for (int y = 0; y < part.height; ++y) {
    const std::ptrdiff_t start = (std::ptrdiff_t{top + y} * frameWidth + left) * pixelBytes;
    bytes.insert(bytes.end(), frame.begin() + start,
                 frame.begin() + start + std::ptrdiff_t{part.width} * pixelBytes);
  }
  return bytes;
}

std::string valueOf(int left, int top, Size part) {
  return std::to_string(left) + "," + std::to_string(top) + "," + std::to_string(part.width) + "x" +
         std::to_string(part.height);
}

// The colour of a pixel, 'R', 'G' or 'B', in a Bayer pattern with SER's code for it.
char colourAt(int colorId, int x, int y) {
  constexpr std::array<const char*, 4> patterns{"RGGB", "GRBG", "GBRG", "BGGR"};
  return patterns.at(static_cast<std::size_t>(colorId - 8))[2 * (y % 2) + x % 2];
}

// A maker's SDK and the bits of a sample. A second ReferenceCamera in the same process would find
// no camera of QHYCCD's.
class OcCaptureRegionOfMaker : public OcCaptureTest,
                               public ::testing::WithParamInterface<std::tuple<const char*, int>> {
};

TEST_P(OcCaptureRegionOfMaker, HoldsTheSamePartOfTheWholeFrame) {
  const std::string baseName = std::get<0>(GetParam());
  const int depth = std::get<1>(GetParam());
  sdks.add(baseName);
  const auto camera = ordered_json::parse(runWithSdks("list", {"--json"}).out)["cameras"][0];
  const Size whole{camera["maxWidth"], camera["maxHeight"]};
  const int wholeColorId = camera["bayer"];
  ASSERT_GE(wholeColorId, 8);
  constexpr Size part{640, 480};
  const ReferenceCamera reference(sdks, baseName, whole.width, whole.height, 1, depth == 8 ? 0 : 1,
                                  50000, 100, 5);
  std::vector<Bytes> frames;  // the camera's, as far as they were needed
  for (const int odd : {0, 1}) {
    // The planet is in the middle.
    const int left = (whole.width - part.width) / 4 * 2 + odd;
    const int top = (whole.height - part.height) / 4 * 2 + odd;
    expectSuccess(record(
        {"--exposure 50ms --gain 100 --offset 5 --frames 2 --overwrite",
         depth == 8 ? "--format raw8" : "--format raw16", "--region", valueOf(left, top, part)},
        "seed 5"));
    const SerFile file(recording());
    EXPECT_EQ(file.width, part.width);
    EXPECT_EQ(file.height, part.height);
    EXPECT_EQ(file.depth, depth);
    EXPECT_EQ(file.unreadBytes, 0);
    for (int y = 0; y < 2; ++y) {
      for (int x = 0; x < 2; ++x) {
        EXPECT_EQ(colourAt(file.colorId, x, y), colourAt(wholeColorId, left + x, top + y))
            << x << ", " << y;
      }
    }
    ASSERT_EQ(file.frames.size(), 2U);
    std::size_t number = 0;
    for (const Bytes& recorded : file.frames) {
      for (bool isFound = false; !isFound; ++number) {
        ASSERT_LT(number, 40U) << "no frame of the camera has this part";
        if (number == frames.size()) {
          frames.push_back(reference.frame(static_cast<int>(number)));
        }
        isFound = recorded == partOf(frames[number], whole.width, depth / 8, left, top, part);
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Region, OcCaptureRegionOfMaker,
                         ::testing::Combine(::testing::Values("ASICamera2", "PlayerOneCamera",
                                                              "qhyccd", "toupcam"),
                                            ::testing::Values(8, 16)),
                         [](const auto& test) {
                           return std::string(std::get<0>(test.param)) + "_" +
                                  std::to_string(std::get<1>(test.param)) + "bits";
                         });

class OcCaptureRegion : public OcCaptureAsiTest {
 protected:
  static constexpr const char* settings = "--camera 0 --exposure 5ms --gain 40 --offset 7";

  // The camera opened with this size, and the part of its frame 0.
  Bytes expectedPart(int bin, int format, int pixelBytes, int left, int top, Size part) const {
    const ReferenceCamera reference(sdks, "ASICamera2", 1280, 960, bin, format, 5000, 40, 7);
    return partOf(reference.frame(0), 1280 / bin, pixelBytes, left, top, part);
  }

  ProgramResult recordRegion(const CommandLine& more,
                             const std::string& simulator = stoppedClock) const {
    return record({"--exposure 5ms --gain 40 --offset 7 --frames 1", more}, simulator);
  }

  std::string calls() const { return contentOf(scratch.file("calls")); }
  std::string logCommand() const { return "; log " + utf8(scratch.file("calls")); }
};

TEST_F(OcCaptureRegion, OpensTheSmallestFrameFromTheCorner) {
  const ProgramResult result =
      expectSuccess(recordRegion({"--region 101,203,64x48"}, stoppedClock + logCommand()));
  EXPECT_EQ(SerFile(recording()).frames.at(0), expectedPart(1, 0, 1, 101, 203, {64, 48}));
  EXPECT_PRED_FORMAT2(IsSubstring, "ASISetROIFormat(0, 168, 252, 1, ", calls());
  EXPECT_PRED_FORMAT2(IsSubstring, "Recorded 1 frames of 64 x 48 raw8 (region at 101, 203) in ",
                      result.out);
  EXPECT_EQ(contentOf(preview()).substr(16, 8), std::string("\0\0\0\x40\0\0\0\x30", 8));
}

TEST_F(OcCaptureRegion, IsInPixelsAfterBinning) {
  expectSuccess(recordRegion({"--bin 2 --region 500,400,140x80"}));
  EXPECT_EQ(SerFile(recording()).frames.at(0), expectedPart(2, 0, 1, 500, 400, {140, 80}));
}

TEST_F(OcCaptureRegion, HasThreeBytesAPixelInColours) {
  expectSuccess(recordRegion({"--format rgb24 --region 15,3,32x30"}));
  EXPECT_EQ(SerFile(recording()).frames.at(0), expectedPart(1, 2, 3, 15, 3, {32, 30}));
}

TEST_F(OcCaptureRegion, TakesTheWholeFrameIfTheSmallOneIsRefused) {
  expectSuccess(recordRegion({"--region 101,203,64x48"},
                             stoppedClock + std::string("; force ASISetROIFormat 1 1 3")));
  EXPECT_EQ(SerFile(recording()).frames.at(0), expectedPart(1, 0, 1, 101, 203, {64, 48}));
}

TEST_F(OcCaptureRegion, TakesTheWholeFrameIfTheSmallOneIsTooSmall) {
  expectSuccess(recordRegion(
      {"--region 101,203,64x48"},
      stoppedClock + std::string("; output ASIGetROIFormat width 1 1 160") + logCommand()));
  EXPECT_EQ(SerFile(recording()).frames.at(0), expectedPart(1, 0, 1, 101, 203, {64, 48}));
  EXPECT_PRED_FORMAT2(IsSubstring, "ASISetROIFormat(0, 1280, 960, 1, ", calls());
}

TEST_F(OcCaptureRegion, ThatNoFrameHoldsIsRefused) {
  expectFailure(recordRegion({"--region 101,203,64x48 --quiet"},
                             stoppedClock + std::string("; output ASIGetROIFormat width 1 -1 160")),
                2, "The region 64 x 48 at 101, 203 is not inside the frame of 160 x 960.");
  EXPECT_FALSE(std::filesystem::exists(recording()));
}

TEST_F(OcCaptureRegion, IsFlippedAfterItWasCutOut) {
  expectSuccess(recordRegion({"--flip --region 101,203,64x47"}));
  const Bytes part = expectedPart(1, 0, 1, 101, 203, {64, 47});
  const SerFile file(recording());
  for (std::size_t at = 0; at < part.size(); ++at) {
    ASSERT_EQ(file.frames.at(0).at(at), part[(46 - at / 64) * 64 + at % 64]);
  }
  // GRBG from an odd column and an odd row is GBRG, also with its odd number of rows reversed.
  EXPECT_EQ(file.colorId, 10);
}

TEST_F(OcCaptureRegion, IsInAFitsHeader) {
  const auto fits = scratch.file("a.fits");
  const ProgramResult result =
      expectSuccess(runWithSdks("snap", {settings, "--region 101,202,64x48 --json --out", fits}));
  const ordered_json region{{"x", 101}, {"y", 202}, {"width", 64}, {"height", 48}};
  expectMembers(ordered_json::parse(result.out),
                {{"width", 64}, {"height", 48}, {"region", region}});
  const std::string content = contentOf(fits);
  for (const char* card : {"NAXIS1  =                   64 ", "NAXIS2  =                   48 ",
                           "BAYERPAT= 'RGGB    '", "XORGSUBF=                  101 ",
                           "YORGSUBF=                  202 "}) {
    EXPECT_PRED_FORMAT2(IsSubstring, card, content);
  }
  const Bytes part = expectedPart(1, 0, 1, 101, 202, {64, 48});
  EXPECT_EQ(content.substr(2880, part.size()), std::string(part.begin(), part.end()));
}

TEST_F(OcCaptureRegion, IsWhatIsMeasured) {
  const Bytes part = expectedPart(1, 0, 1, 101, 203, {64, 48});
  double sum = 0;
  for (const std::uint8_t sample : part) {
    sum += sample;
  }
  const auto watched = ordered_json::parse(
      expectSuccess(
          runWithSdks("watch", {settings, "--region 101,203,64x48 --frames 1 --json --quiet"}))
          .out);
  EXPECT_DOUBLE_EQ(watched["mean"].get<double>(), sum / static_cast<double>(part.size()));
  EXPECT_EQ(watched["width"], 64);
  EXPECT_EQ(watched["region"]["y"], 203);

  const auto measured = ordered_json::parse(
      expectSuccess(runWithSdks("bench", {settings, "--format raw8 --region 101,203,64x48",
                                          "--seconds 0.2 --json --quiet"}))
          .out);
  EXPECT_EQ(measured["measurements"][0]["height"], 48);
  EXPECT_EQ(measured["region"]["x"], 101);
}

}  // namespace

}  // namespace orvane::testing
