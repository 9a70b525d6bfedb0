// FITS files, card by card and byte by byte.
#include "formats/fits_writer.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "scratch_directory.hpp"

namespace orvane::host {

namespace {

using orvane::testing::contentOf;
using orvane::testing::ScratchDirectory;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t blockSize = 2880;

FitsDescription description(int width, int height, PixelFormat format, BayerPattern bayer) {
  using std::chrono::sys_days;
  return {.layout = {width, height, format, bayer},
          .start = sys_days(std::chrono::year(2024) / 2 / 29) + std::chrono::hours(23) +
                   std::chrono::minutes(5) + std::chrono::seconds(7) +
                   std::chrono::microseconds(4200),
          .exposureSeconds = 0.02,
          .gain = -3,
          .offset = 10,
          .bin = 2,
          .pixelSizeUm = 3.75,
          .temperature = -10,
          .camera = "Anna's camera",
          .observer = "",
          .telescope = ""};
}

std::string text(const Bytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

std::string padded(const std::string& content, std::size_t size) {
  return content + std::string(size - content.size(), ' ');
}

std::string header(const std::vector<std::string>& cards) {
  std::string content;
  for (const std::string& card : cards) {
    content += padded(card, 80);
  }
  return padded(content, blockSize);
}

// The card of this keyword, without the spaces at its end; "" when there is none.
std::string cardOf(const Bytes& file, const std::string& keyword) {
  const std::string start = padded(keyword, 8);
  for (std::size_t at = 0; at < blockSize; at += 80) {
    const std::string card = text(file).substr(at, 80);
    if (card.rfind(start, 0) == 0) {
      return card.substr(0, card.find_last_not_of(' ') + 1);
    }
  }
  return "";
}

TEST(FitsWriter, WritesTheseBytes) {
  const Bytes frame{0x00, 0x00, 0x00, 0x80, 0xff, 0xff, 0x34, 0x12};
  const Bytes file = fitsFile(frame, description(2, 2, PixelFormat::Raw16, BayerPattern::Grbg));
  EXPECT_EQ(text(file).substr(0, blockSize),
            header({"SIMPLE  =                    T / this is a FITS file",
                    "BITPIX  =                   16 / bits of a sample",
                    "NAXIS   =                    2",
                    "NAXIS1  =                    2 / width",
                    "NAXIS2  =                    2 / height",
                    "BZERO   =                32768 / samples are unsigned",
                    "BSCALE  =                    1",
                    "ROWORDER= 'TOP-DOWN' / the first row is the top one",
                    "BAYERPAT= 'GRBG    ' / colours of the first two rows",
                    "XBAYROFF=                    0",
                    "YBAYROFF=                    0",
                    "DATE-OBS= '2024-02-29T23:05:07.004200' / UTC, start of exposure",
                    "EXPTIME =                 0.02 / seconds",
                    "GAIN    =                   -3 / in the maker's units",
                    "OFFSET  =                   10 / in the maker's units",
                    "XPIXSZ  =                  7.5 / micrometres, with binning",
                    "YPIXSZ  =                  7.5 / micrometres, with binning",
                    "XBINNING=                    2",
                    "YBINNING=                    2",
                    "CCD-TEMP=                -10.0 / degrees Celsius",
                    "INSTRUME= 'Anna''s camera'",
                    "END"}));
  // 0, 32768, 65535 and 0x1234, less by 32768 and with the high byte first.
  EXPECT_EQ(text(file).substr(blockSize),
            std::string("\x80\x00\x00\x00\x7f\xff\x92\x34", 8) + std::string(blockSize - 8, '\0'));
}

TEST(FitsWriter, WritesColoursAsThreePlanes) {
  const Bytes frame{1, 2, 3, 4, 5, 6};
  const Bytes file = fitsFile(frame, description(2, 1, PixelFormat::Rgb24, BayerPattern::None));
  EXPECT_EQ(cardOf(file, "BITPIX"), "BITPIX  =                    8 / bits of a sample");
  EXPECT_EQ(cardOf(file, "NAXIS"), "NAXIS   =                    3");
  EXPECT_EQ(cardOf(file, "NAXIS3"), "NAXIS3  =                    3 / red, green, blue");
  EXPECT_EQ(cardOf(file, "BZERO"), "");
  EXPECT_EQ(cardOf(file, "BAYERPAT"), "");
  EXPECT_EQ(Bytes(file.begin() + blockSize, file.begin() + blockSize + 6),
            (Bytes{1, 4, 2, 5, 3, 6}));
  EXPECT_EQ(file.size(), 2 * blockSize);
}

TEST(FitsWriter, LeavesOutWhatIsUnknown) {
  FitsDescription unknown = description(1, 1, PixelFormat::Raw8, BayerPattern::None);
  unknown.pixelSizeUm = std::numeric_limits<double>::quiet_NaN();
  unknown.temperature.reset();
  Bytes file = fitsFile(Bytes{200}, unknown);
  for (const char* keyword : {"XPIXSZ", "YPIXSZ", "CCD-TEMP", "OBSERVER", "TELESCOP", "BZERO"}) {
    EXPECT_EQ(cardOf(file, keyword), "");
  }
  EXPECT_EQ(file[blockSize], 200);
  unknown.temperature = std::numeric_limits<double>::quiet_NaN();
  unknown.pixelSizeUm = 0;
  file = fitsFile(Bytes{200}, unknown);
  EXPECT_EQ(cardOf(file, "CCD-TEMP"), "");
  EXPECT_EQ(cardOf(file, "XPIXSZ"), "");
}

TEST(FitsWriter, KeepsTextToTheCardAndToAscii) {
  FitsDescription names = description(1, 1, PixelFormat::Raw8, BayerPattern::None);
  names.camera = std::string(67, 'c') + "''";
  names.observer = "caf\u00e9\n";
  names.telescope = "C8";
  const Bytes file = fitsFile(Bytes{0}, names);
  EXPECT_EQ(cardOf(file, "INSTRUME"), "INSTRUME= '" + std::string(67, 'c') + "'");
  EXPECT_EQ(cardOf(file, "OBSERVER"), "OBSERVER= 'caf???  '");
  EXPECT_EQ(cardOf(file, "TELESCOP"), "TELESCOP= 'C8      '");
}

TEST(FitsWriter, WritesTheFile) {
  const ScratchDirectory scratch;
  const auto path = scratch.file("caf\u00e9.fits");
  const FitsDescription small = description(1, 1, PixelFormat::Raw8, BayerPattern::None);
  writeFits(path, Bytes{9}, small);
  EXPECT_EQ(contentOf(path), text(fitsFile(Bytes{9}, small)));
  EXPECT_THROW(writeFits(scratch.file("missing") / "a.fits", Bytes{9}, small), std::runtime_error);
}

}  // namespace

}  // namespace orvane::host
