// A recording that the cameras see instead of the synthetic sky: the frames of a SER file, and the
// sensor in front of them.
//
// sim_play_recording() describes how it is shown.
#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <span>
#include <string>
#include <vector>

#include "core/sensor.hpp"

namespace orvane::sim {

// The header is checked against the file's size.
class Recording {
 public:
  // Opens the file of this name, in UTF-8, instead of the previous one. Returns "", or the reason
  // why the file cannot be played; the previous one then stays open.
  std::string open(const std::string& path);

  void close() { *this = {}; }
  bool isOpen() const { return file_.is_open(); }

  // Writes a frame, as Renderer::render() does. The recording is open and repeats: frame numbers
  // beyond its end start again at its first frame. A frame that can no longer be read is black.
  void render(const FrameSettings& settings, std::int64_t frameNumber, std::uint8_t* buffer,
              std::int64_t rowPitch);

 private:
  class View;

  // The colours of a file's frames.
  struct Color {
    std::int32_t id = 0;  // in the header
    BayerPattern bayerPattern = BayerPattern::None;
    std::int32_t planes = 1;
    bool isBlueFirst = false;
  };

  // The contents of the header.
  struct Format {
    std::int32_t width = 0;
    std::int32_t height = 0;
    Color color;
    std::int32_t depth = 8;
    bool isBigEndian = false;
    std::int64_t frameCount = 0;

    std::int64_t samples() const { return std::int64_t{width} * height * color.planes; }
    std::int64_t frameBytes() const { return samples() * (depth > 8 ? 2 : 1); }
  };

  // Returns "", or the reason why the file cannot be played.
  std::string readFormat(std::span<const std::uint8_t> header, std::int64_t fileSize);

  // Fills `bytes` from the file. Returns whether it has so many.
  bool read(std::int64_t position, std::span<std::uint8_t> bytes);

  // Makes a frame the present one.
  void show(std::int64_t frameNumber);

  // The present frame's light at a pixel inside the frame, in one colour (0 red, 1 green, 2 blue)
  // or whatever its colour. 65536 is full scale. With a Bayer pattern, the value comes from the
  // pixel or from the average of its neighbours with the filter of this colour.
  float light(std::size_t plane, std::int32_t x, std::int32_t y) const;
  float brightness(std::int32_t x, std::int32_t y) const;

  float sample(std::int32_t x, std::int32_t y, std::size_t plane) const;
  float ofAllNeighbours(std::size_t plane, std::int32_t x, std::int32_t y) const;
  float ofNeighboursAtTheEdge(std::size_t plane, std::int32_t x, std::int32_t y) const;

  std::ifstream file_;
  Format format_;
  std::int64_t present_ = -1;  // the frame that has been read; -1 if none
  std::vector<std::uint8_t> bytes_;
  std::vector<std::uint16_t> samples_;  // scaled to 16 bits, red first
};

}  // namespace orvane::sim
