// Writes FITS files with one image.
#include "formats/fits_writer.hpp"

#include <algorithm>
#include <cmath>

#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr std::size_t cardSize = 80;
constexpr std::size_t blockSize = 2880;

// A FITS header: cards of 80 characters, each with a keyword, a value and a comment.
class FitsHeader {
 public:
  // Numbers and logical values end in column 30.
  void addPlain(const std::string& keyword, const std::string& value, const std::string& comment) {
    constexpr std::size_t width = 20;
    const std::size_t missing = value.size() < width ? width - value.size() : 0;
    addCard(keyword, std::string(missing, ' ') + value, comment);
  }

  void add(const std::string& keyword, int value, const std::string& comment) {
    addPlain(keyword, std::to_string(value), comment);
  }

  void add(const std::string& keyword, double value, const std::string& comment) {
    const std::string text = decimal(value);
    addPlain(keyword, text.find('.') == std::string::npos ? text + ".0" : text, comment);
  }

  // In quotation marks, with at least eight characters. Quotation marks inside are doubled.
  void add(const std::string& keyword, const std::string& value, const std::string& comment) {
    constexpr std::size_t longest = cardSize - 12;
    constexpr std::size_t shortest = 8;
    std::string text;
    for (const char letter : value) {
      const std::string next = letter == '\'' ? "''" : std::string(1, printable(letter));
      if (text.size() + next.size() > longest) {
        break;
      }
      text += next;
    }
    text.resize(std::max(text.size(), shortest), ' ');
    addCard(keyword, "'" + text + "'", comment);
  }

  std::string finished() const {
    std::string text = text_ + "END";
    text.resize((text.size() + blockSize - 1) / blockSize * blockSize, ' ');
    return text;
  }

 private:
  static char printable(char letter) { return letter >= ' ' && letter <= '~' ? letter : '?'; }

  void addCard(const std::string& keyword, const std::string& value, const std::string& comment) {
    std::string card = keyword;
    card.resize(8, ' ');
    card += "= " + value + (comment.empty() ? "" : " / " + comment);
    card.resize(cardSize, ' ');
    text_ += card;
  }

  std::string text_;
};

bool isColour(const FrameLayout& layout) {
  return layout.format == PixelFormat::Rgb24;
}

bool isWide(const FrameLayout& layout) {
  return layout.format == PixelFormat::Raw16;
}

void addShape(FitsHeader& header, const FrameLayout& layout) {
  header.addPlain("SIMPLE", "T", "this is a FITS file");
  header.add("BITPIX", isWide(layout) ? 16 : 8, "bits of a sample");
  header.add("NAXIS", isColour(layout) ? 3 : 2, "");
  header.add("NAXIS1", layout.width, "width");
  header.add("NAXIS2", layout.height, "height");
  if (isColour(layout)) {
    header.add("NAXIS3", 3, "red, green, blue");
  }
  if (isWide(layout)) {
    header.add("BZERO", 32768, "samples are unsigned");
    header.add("BSCALE", 1, "");
  }
  header.add("ROWORDER", "TOP-DOWN", "the first row is the top one");
}

std::string headerText(const FitsDescription& description) {
  FitsHeader header;
  addShape(header, description.layout);
  if (description.layout.bayer != BayerPattern::None) {
    header.add("BAYERPAT", bayerName(description.layout.bayer), "colours of the first two rows");
    header.add("XBAYROFF", 0, "");
    header.add("YBAYROFF", 0, "");
  }
  header.add("DATE-OBS", utcText(description.start), "UTC, start of exposure");
  header.add("EXPTIME", description.exposureSeconds, "seconds");
  header.add("GAIN", description.gain, "in the maker's units");
  header.add("OFFSET", description.offset, "in the maker's units");
  if (std::isfinite(description.pixelSizeUm) && description.pixelSizeUm > 0) {
    const double size = description.pixelSizeUm * description.bin;
    header.add("XPIXSZ", size, "micrometres, with binning");
    header.add("YPIXSZ", size, "micrometres, with binning");
  }
  header.add("XBINNING", description.bin, "");
  header.add("YBINNING", description.bin, "");
  if (description.region) {
    header.add("XORGSUBF", description.region->left, "first column, in binned pixels from 0");
    header.add("YORGSUBF", description.region->top, "first row, in binned pixels from 0");
  }
  if (description.temperature && std::isfinite(*description.temperature)) {
    header.add("CCD-TEMP", *description.temperature, "degrees Celsius");
  }
  header.add("INSTRUME", description.camera, "");
  if (!description.observer.empty()) {
    header.add("OBSERVER", description.observer, "");
  }
  if (!description.telescope.empty()) {
    header.add("TELESCOP", description.telescope, "");
  }
  if (!description.target.empty()) {
    header.add("OBJECT", description.target, "");
  }
  if (!description.filter.empty()) {
    header.add("FILTER", description.filter, "");
  }
  return header.finished();
}

void appendSamples(std::vector<std::uint8_t>& file, std::span<const std::uint8_t> frame,
                   const FrameLayout& layout) {
  if (isWide(layout)) {
    for (std::size_t at = 0; at + 1 < frame.size(); at += 2) {
      file.push_back(frame[at + 1] ^ 0x80U);  // big-endian, and less by 32768
      file.push_back(frame[at]);
    }
    return;
  }
  const std::size_t planes = isColour(layout) ? 3 : 1;
  for (std::size_t plane = 0; plane < planes; ++plane) {
    for (std::size_t at = plane; at < frame.size(); at += planes) {
      file.push_back(frame[at]);
    }
  }
}

}  // namespace

std::vector<std::uint8_t> fitsFile(std::span<const std::uint8_t> frame,
                                   const FitsDescription& description) {
  const std::string header = headerText(description);
  std::vector<std::uint8_t> file;
  file.reserve(header.size() + frame.size() + blockSize);
  file.assign(header.begin(), header.end());
  appendSamples(file, frame, description.layout);
  file.resize((file.size() + blockSize - 1) / blockSize * blockSize);
  return file;
}

void writeFits(const std::filesystem::path& path, std::span<const std::uint8_t> frame,
               const FitsDescription& description, Existing existing) {
  OutputFile file(path, existing);
  file.writeAt(0, fitsFile(frame, description));
  file.close();
}

}  // namespace orvane::host
