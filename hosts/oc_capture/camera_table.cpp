// The cameras as a table for a person to read.
#include "oc_capture/camera_table.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "system/argument_values.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr std::size_t columnCount = 12;
using Row = std::array<std::string, columnCount>;

std::string pixelPitch(double micrometres) {
  return std::isnan(micrometres) ? "-" : decimal(micrometres) + " um";
}

std::string colour(const CameraDescription& camera) {
  if (!camera.isColor) {
    return "mono";
  }
  return camera.bayer == BayerPattern::None ? "colour" : bayerName(camera.bayer);
}

// What is not USB 3 may as well be unknown: not every SDK tells.
std::string usb(const CameraDescription& camera) {
  if (!camera.isUsb3Camera) {
    return "-";
  }
  return camera.isUsb3Host ? "3" : "3 on 2";
}

std::string orDash(const std::string& text) {
  return text.empty() ? "-" : text;
}

std::string gainRange(const CameraDescription& camera) {
  return camera.hasGainRange()
             ? std::to_string(camera.minGain) + " to " + std::to_string(camera.maxGain)
             : "-";
}

Row rowOf(const CameraDescription& camera) {
  return {std::to_string(camera.id),
          camera.name,
          std::to_string(camera.maxWidth) + " x " + std::to_string(camera.maxHeight),
          std::to_string(camera.bitDepth),
          pixelPitch(camera.pixelSizeUm),
          colour(camera),
          camera.isCooled ? "yes" : "no",
          usb(camera),
          orDash(joined(camera.bins, ",", [](int bin) { return std::to_string(bin); })),
          orDash(joined(camera.formats, ",", formatName)),
          gainRange(camera),
          camera.hasLongestExposure() ? durationText(camera.maxExposureUs) : "-"};
}

}  // namespace

std::string cameraTable(const std::vector<CameraDescription>& cameras) {
  std::vector<Row> rows{{"Index", "Name", "Sensor", "Bits", "Pixel", "Colour", "Cooled", "USB",
                         "Bins", "Formats", "Gain", "Longest exposure"}};
  std::transform(cameras.begin(), cameras.end(), std::back_inserter(rows), rowOf);

  std::array<std::size_t, columnCount> widths{};
  for (const Row& row : rows) {
    for (std::size_t column = 0; column < columnCount; ++column) {
      widths[column] = std::max(widths[column], utf8Length(row[column]));
    }
  }
  std::string table;
  for (const Row& row : rows) {
    for (std::size_t column = 0; column + 1 < columnCount; ++column) {
      table += row[column];
      table.append(widths[column] - utf8Length(row[column]) + 2, ' ');
    }
    table += row.back() + "\n";
  }
  return table;
}

}  // namespace orvane::host
