// Frames for the benchmark of recording. They are filled in advance, so that delivering one is only
// a copy.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

namespace orvane::benchmarks {

/// The environment variable ORVANE_INSTANT_SIZE ("1936x1096") gives the camera that size and
/// frames; without it the camera has 64 x 48 pixels and delivers nothing.
class PreparedFrames {
 public:
  PreparedFrames() {
    const char* const size = std::getenv("ORVANE_INSTANT_SIZE");  // NOLINT(concurrency-mt-unsafe)
    if (size == nullptr || std::sscanf(size, "%dx%d", &width_, &height_) != 2) {
      return;
    }
    std::minstd_rand random(1);
    for (std::vector<std::uint8_t>& frame : frames_) {
      frame.resize(3 * pixels());
      for (std::uint8_t& byte : frame) {
        byte = static_cast<std::uint8_t>(random() >> 16);
      }
    }
  }

  int width() const { return width_; }
  int height() const { return height_; }
  std::size_t pixels() const {
    return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
  }
  bool arePrepared() const { return !frames_[0].empty(); }

  /// Copies the next frame, of this many bytes, into the buffer.
  void deliver(std::uint8_t* buffer, std::size_t bytes) {
    std::memcpy(buffer, frames_[next_].data(), bytes);
    next_ = (next_ + 1) % frames_.size();
  }

 private:
  int width_ = 64;
  int height_ = 48;
  std::size_t next_ = 0;
  std::array<std::vector<std::uint8_t>, 4> frames_;
};

}  // namespace orvane::benchmarks
