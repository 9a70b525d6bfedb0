// Reads SER files. The file's size tells which frames are there.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "imaging/frame_layout.hpp"
#include "imaging/image.hpp"
#include "system/file.hpp"

namespace orvane::host {

/// The order of a pixel's samples in the file.
enum class SerChannels { One, Rgb, Bgr };

/// What a SER file says about itself.
struct SerFacts {
  int width = 0;
  int height = 0;
  int depth = 0;  ///< bits of a sample, 1 to 16; more than 8 are stored in two bytes
  SerChannels channels = SerChannels::One;
  BayerPattern bayer = BayerPattern::None;  ///< None also for patterns of other colours
  std::int32_t colorId = 0;                 ///< as in the header
  bool isBigEndian = false;                 ///< samples of two bytes
  std::int32_t frames = 0;                  ///< that can be read: counted by the header, and whole
  std::int32_t promisedFrames = 0;  ///< that the header counts; more than `frames` if it is cut off
  std::int64_t framesBehind = 0;    ///< whole frames behind those that the header counts
  std::string observer;             ///< these three end at the first NUL and are valid UTF-8
  std::string instrument;
  std::string telescope;
  std::int64_t startLocal = 0;           ///< serLocalTicks(); 0 or less if unknown
  std::int64_t startUtc = 0;             ///< serTicks()
  std::vector<std::int64_t> timeStamps;  ///< like startUtc, one for each frame, or none
  std::int64_t unusedBytes = 0;          ///< after all whole frames and their time stamps

  /// True if the header counts other frames than there are.
  bool isDamaged() const { return frames != promisedFrames || framesBehind > 0; }
};

/// True for a time, in the ticks of serTicks(), that a frame of a recording with this start can
/// have. A start of 0 is unknown.
bool isFrameTime(std::int64_t ticks, std::int64_t startUtc);

/// A SER file that is open for reading. Frames are read on request; the time stamps are kept in
/// memory. A file that ends before its last frame is read as far as it goes, one with more frames
/// than its header counts up to that count.
class SerReader {
 public:
  /// Throws std::runtime_error with a sentence that names the file, if it cannot be read, is no SER
  /// file, or has an impossible number in its header.
  explicit SerReader(const std::filesystem::path& path);

  const SerFacts& facts() const { return facts_; }

  /// The time stamps in the file: one for each whole frame, also for those that the header does not
  /// count, or fewer if they are cut off.
  const std::vector<std::int64_t>& trailer() const { return trailer_; }

  /// The size of one frame in bytes, at most 1 GiB.
  std::size_t frameBytes() const { return frameBytes_; }

  /// Reads frame `index`, from 0 on, unchanged into frameBytes() bytes. Throws std::runtime_error
  /// with a sentence that names the file.
  void readFrame(std::int32_t index, std::span<std::uint8_t> frame) const;

  /// Frame `index` with its samples scaled to 16 bits and its channels in the order red, green,
  /// blue; not debayered. Throws as readFrame().
  Image readImage(std::int32_t index) const;

 private:
  void readHeader();
  void examineContent();
  std::vector<std::int64_t> timesAt(std::int64_t position, std::int64_t count) const;
  std::vector<std::int64_t> plausibleTimesAt(std::int64_t position, std::int64_t count) const;

  InputFile file_;
  SerFacts facts_;
  std::vector<std::int64_t> trailer_;
  std::size_t frameBytes_ = 0;
};

}  // namespace orvane::host
