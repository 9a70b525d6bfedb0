// A picture as an answer: binary, or as JSON.
#include "oc_alpaca/image_bodies.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <utility>
#include <vector>

namespace orvane::host {

namespace {

// The protocol's codes of number types.
constexpr std::int32_t int32Type = 2;
constexpr std::int32_t byteType = 6;
constexpr std::int32_t uint16Type = 8;

int planesOf(const Picture& picture) {
  return picture.layout.format == PixelFormat::Rgb24 ? 3 : 1;
}

int rankOf(const Picture& picture) {
  return planesOf(picture) == 1 ? 2 : 3;
}

class PictureBody : public LongBody {
 public:
  explicit PictureBody(std::shared_ptr<const Picture> picture)
      : picture_(std::move(picture)), rest_(picture_->bytes()) {}

  std::uint64_t size() const override { return picture_->bytes().size(); }

  std::span<const std::uint8_t> next() override {
    // The network's time limit is for one part.
    constexpr std::size_t part = 4U << 20U;
    const auto now = rest_.first(std::min(part, rest_.size()));
    rest_ = rest_.subspan(now.size());
    return now;
  }

 private:
  std::shared_ptr<const Picture> picture_;
  std::span<const std::uint8_t> rest_;
};

std::size_t digitCount(int value) {
  constexpr std::array limits{10, 100, 1000, 10000};
  return 1 + static_cast<std::size_t>(
                 std::ranges::count_if(limits, [value](int limit) { return value >= limit; }));
}

// "[[1,2],[3,4]]", and "[[[1,2,3],..." for three planes, then `after`. The size is counted before,
// because many clients cannot read answers without a stated size.
class JsonPixels : public LongBody {
 public:
  JsonPixels(std::shared_ptr<const Picture> picture, std::string after)
      : picture_(std::move(picture)),
        planes_(static_cast<std::size_t>(planesOf(*picture_))),
        height_(static_cast<std::size_t>(picture_->layout.height)),
        width_(static_cast<std::size_t>(picture_->layout.width)),
        after_(std::move(after)),
        size_(countSize()) {}

  std::uint64_t size() const override { return size_; }

  std::span<const std::uint8_t> next() override {
    text_.clear();
    constexpr std::size_t part = 256U << 10U;
    while (column_ < width_ && text_.size() < part) {
      text_ += column_ == 0 ? "[[" : ",[";
      appendColumn(column_);
      text_ += ']';
      ++column_;
      if (column_ == width_) {
        text_ += ']';
        text_ += after_;
      }
    }
    return {reinterpret_cast<const std::uint8_t*>(text_.data()), text_.size()};
  }

 private:
  void appendNumber(std::size_t sample) {
    std::array<char, 8> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(),
                                   sampleAt(picture_->bytes(), picture_->layout.format, sample));
    text_.append(digits.begin(), end.ptr);
  }

  void appendColumn(std::size_t column) {
    std::size_t sample = column * height_ * planes_;
    for (std::size_t y = 0; y < height_; ++y) {
      text_ += y == 0 ? "" : ",";
      text_ += planes_ == 1 ? "" : "[";
      for (std::size_t plane = 0; plane < planes_; ++plane) {
        text_ += plane == 0 ? "" : ",";
        appendNumber(sample++);
      }
      text_ += planes_ == 1 ? "" : "]";
    }
  }

  std::uint64_t countSize() const {
    const std::span<const std::uint8_t> bytes = picture_->bytes();
    const std::size_t samples = width_ * height_ * planes_;
    std::uint64_t digits = 0;
    for (std::size_t sample = 0; sample < samples; ++sample) {
      digits += digitCount(sampleAt(bytes, picture_->layout.format, sample));
    }
    const std::uint64_t pixels = width_ * height_;
    const std::uint64_t pixelBrackets = planes_ == 1 ? 0 : 2 * pixels;
    // Each list has a comma less than elements.
    const std::uint64_t commas = (width_ - 1) + width_ * (height_ - 1) + pixels * (planes_ - 1);
    return digits + commas + 2 + 2 * width_ + pixelBrackets + after_.size();
  }

  std::shared_ptr<const Picture> picture_;
  std::size_t planes_;
  std::size_t height_;
  std::size_t width_;
  std::string after_;
  std::uint64_t size_;
  std::size_t column_ = 0;
  std::string text_;
};

void append(std::string& text, std::uint32_t value) {
  for (unsigned shift = 0; shift < 32; shift += 8) {
    text += static_cast<char>(value >> shift & 0xFFU);
  }
}

void append(std::string& text, std::int32_t value) {
  append(text, static_cast<std::uint32_t>(value));
}

}  // namespace

Response imageBytes(std::shared_ptr<const Picture> picture, const TransactionNumbers& numbers) {
  constexpr std::int32_t version = 1;
  constexpr std::int32_t headerSize = 44;
  const int planes = planesOf(*picture);
  Response response;
  response.contentType = "application/imagebytes";
  append(response.body, version);
  append(response.body, std::int32_t{0});  // no error
  append(response.body, numbers.client);
  append(response.body, numbers.server);
  append(response.body, headerSize);
  append(response.body, int32Type);
  append(response.body, picture->layout.format == PixelFormat::Raw16 ? uint16Type : byteType);
  append(response.body, rankOf(*picture));
  append(response.body, picture->layout.width);
  append(response.body, picture->layout.height);
  append(response.body, planes == 1 ? 0 : planes);
  response.rest = std::make_unique<PictureBody>(std::move(picture));
  return response;
}

Response imageJson(std::shared_ptr<const Picture> picture, const TransactionNumbers& numbers) {
  Response response;
  response.contentType = "application/json";
  response.body = "{\"Type\":" + std::to_string(int32Type) +
                  ",\"Rank\":" + std::to_string(rankOf(*picture)) + ",\"Value\":";
  response.rest = std::make_unique<JsonPixels>(
      std::move(picture), ",\"ClientTransactionID\":" + std::to_string(numbers.client) +
                              ",\"ServerTransactionID\":" + std::to_string(numbers.server) +
                              ",\"ErrorNumber\":0,\"ErrorMessage\":\"\"}");
  return response;
}

}  // namespace orvane::host
