// "oc_capture snap", run as a program: its files against the simulators' own frames.
#include <nlohmann/json.hpp>

#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

constexpr std::size_t fitsBlock = 2880;

class OcCaptureSnap : public OcCaptureAsiTest {
 protected:
  // Takes a frame of 64 x 48 pixels into this file.
  ProgramResult snap(const std::string& name, const char* more) const {
    return runWithSdks(
        "snap", {"--camera 0 --width 64 --height 48 --gain 40 --out", scratch.file(name), more});
  }

  Bytes fitsSamples(const std::string& name, std::size_t size) const {
    const std::string content = contentOf(scratch.file(name));
    EXPECT_EQ(content.size(), fitsBlock + (size + fitsBlock - 1) / fitsBlock * fitsBlock);
    const std::string samples = content.substr(fitsBlock, size);
    return {samples.begin(), samples.end()};
  }

  std::string fitsHeader(const std::string& name) const {
    return contentOf(scratch.file(name)).substr(0, fitsBlock);
  }
};

TEST_F(OcCaptureSnap, FitsHoldsTheSamplesAndTheSettings) {
  const ProgramResult result = expectSuccess(
      snap("frame.fits", "--format raw16 --exposure 5ms --observer Anna --telescope 80/480"));
  EXPECT_EQ(result.out,
            "Took a frame of 64 x 48 raw16: \"" + utf8(scratch.file("frame.fits")) + "\".\n");
  EXPECT_EQ(result.err, "");

  const ReferenceCamera reference(sdks, "ASICamera2", 64, 48, 1, 1, 5000, 40, 10);
  const Bytes frame = reference.frame(0);
  const Bytes samples = fitsSamples("frame.fits", frame.size());
  for (std::size_t at = 0; at < frame.size(); at += 2) {
    const int expected = (frame[at] | frame[at + 1] << 8) - 32768;
    const auto stored = static_cast<std::int16_t>(samples[at] << 8 | samples[at + 1]);
    ASSERT_EQ(stored, expected) << at;
  }
  const std::string header = fitsHeader("frame.fits");
  for (const char* card :
       {"BITPIX  =                   16 ", "NAXIS1  =                   64 ",
        "NAXIS2  =                   48 ", "BZERO   =                32768 ",
        "ROWORDER= 'TOP-DOWN'", "BAYERPAT= 'GRBG    '", "EXPTIME =                0.005 ",
        "GAIN    =                   40 ", "OFFSET  =                   10 ",
        "XPIXSZ  =                 3.75 ", "YPIXSZ  =                 3.75 ",
        "XBINNING=                    1 ", "YBINNING=                    1 ",
        "CCD-TEMP= ", "INSTRUME= 'ZWO ASI120MC-S'", "OBSERVER= 'Anna    '", "TELESCOP= '80/480  '",
        "DATE-OBS= '20"}) {
    EXPECT_PRED_FORMAT2(IsSubstring, card, header);
  }
}

TEST_F(OcCaptureSnap, FitsOfColoursHasThreePlanes) {
  expectSuccess(snap("frame.fit", "--format rgb24 --bin 2 --exposure 5ms"));
  const ReferenceCamera reference(sdks, "ASICamera2", 64, 48, 2, 2, 5000, 40, 10);
  const Bytes frame = reference.frame(0);
  const Bytes samples = fitsSamples("frame.fit", frame.size());
  const std::size_t plane = frame.size() / 3;
  for (std::size_t at = 0; at < frame.size(); ++at) {
    ASSERT_EQ(samples[at % 3 * plane + at / 3], frame[at]) << at;
  }
  const std::string header = fitsHeader("frame.fit");
  EXPECT_PRED_FORMAT2(IsSubstring, "XPIXSZ  =                  7.5 ", header);
  EXPECT_PRED_FORMAT2(IsSubstring, "XBINNING=                    2 ", header);
  EXPECT_PRED_FORMAT2(IsNotSubstring, "BAYERPAT", header);
}

TEST_F(OcCaptureSnap, CorrectsFrames) {
  expectSuccess(snap("frame.fits", "--flip --bayer rggb --discard 2 --exposure 5ms"));
  const ReferenceCamera reference(sdks, "ASICamera2", 64, 48, 1, 0, 5000, 40, 10);
  const Bytes frame = reference.frame(2);
  const Bytes samples = fitsSamples("frame.fits", frame.size());
  for (std::size_t y = 0; y < 48; ++y) {
    for (std::size_t x = 0; x < 64; ++x) {
      ASSERT_EQ(samples[(47 - y) * 64 + x], frame[y * 64 + x]) << x << ", " << y;
    }
  }
  EXPECT_PRED_FORMAT2(IsSubstring, "BAYERPAT= 'GBRG    '", fitsHeader("frame.fits"));
}

TEST_F(OcCaptureSnap, PngIsInColour) {
  const std::string name = "caf\u00e9 \U0001F52D.PNG";
  expectSuccess(snap(name, ""));
  EXPECT_TRUE(isPng(scratch.file(name)));
  EXPECT_EQ(contentOf(scratch.file(name)).substr(16, 10),
            std::string("\0\0\0\x40\0\0\0\x30\x08\x02", 10));
}

TEST_F(OcCaptureSnap, TellsInJson) {
  const ProgramResult result = expectSuccess(snap("frame.fits", "--json --quiet --exposure 5ms"));
  EXPECT_EQ(result.err, "");
  const auto document = nlohmann::ordered_json::parse(result.out);
  expectMembers(document, {{"file", utf8(scratch.file("frame.fits"))},
                           {"camera", "ZWO ASI120MC-S"},
                           {"width", 64},
                           {"height", 48},
                           {"format", "raw8"},
                           {"bayer", "GRBG"},
                           {"exposureUs", 5000},
                           {"gain", 40},
                           {"offset", 10},
                           {"bin", 1}});
  EXPECT_TRUE(document["temperature"].is_number());
}

TEST_F(OcCaptureSnap, QuietWritesNothing) {
  const ProgramResult result = expectSuccess(snap("frame.png", "--quiet"));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "");
}

TEST_F(OcCaptureSnap, LeavesOutATemperatureThatIsNone) {
  const ProgramResult result =
      expectSuccess(runWithSdks("snap", {"--camera 0 --json --out", scratch.file("frame.fits")},
                                "clock stopped; force ASIGetControlValue 1 -1 3"));
  EXPECT_PRED_FORMAT2(IsNotSubstring, "CCD-TEMP", fitsHeader("frame.fits"));
  EXPECT_TRUE(nlohmann::ordered_json::parse(result.out)["temperature"].is_null());
}

TEST_F(OcCaptureSnap, DoesNotReplaceAFileUnasked) {
  expectSuccess(snap("frame.png", "--quiet"));
  expectFailure(snap("frame.png", ""), 2,
                "\"" + utf8(scratch.file("frame.png")) +
                    "\" exists already; name another file or add --overwrite.");
  expectSuccess(snap("frame.png", "--overwrite"));
}

TEST_F(OcCaptureSnap, ACameraThatFails) {
  expectFailure(runWithSdks("snap", {"--quiet --camera 0 --out", scratch.file("a.png")},
                            "clock stopped; force ASIGetVideoData 1 -1 5"),
                1, "ASIGetVideoData: 5");
  EXPECT_FALSE(std::filesystem::exists(scratch.file("a.png")));
}

}  // namespace

}  // namespace orvane::testing
