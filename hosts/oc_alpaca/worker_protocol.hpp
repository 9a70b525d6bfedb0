// What the server and its worker processes say to each other: one JSON object on a line.
//
// The server sends commands, {"do": ...}, and the worker answers them with events, {"is": ...}:
//   scan                 all cameras, and an examination of the SDKs: scanned
//   find name, ordinal   scans, and keeps this camera: found
//   open settings        opens it: opened
//   expose ...           takes a picture, see ExposeCommand: accepted, exposing, picture
//   abort                forgets the picture that is being taken; no answer
//   close                closes the camera: closed
//
// Further events:
//   temperature celsius  about once a second while the camera streams
//   frame                a frame has come that does not count for the exposure
//   exposing longest     the longest exposure, in microseconds, that is to be waited for
//   failed text, lost    the last command failed; `lost`: the camera is closed, or was not opened
#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <orvane_desktop_camera.hpp>
#include <string>

#include "imaging/region.hpp"

namespace orvane::host {

using Json = nlohmann::ordered_json;

inline Json jsonOf(const oc::Settings& settings) {
  return {{"bin", settings.bin},
          {"format", static_cast<int>(settings.format)},
          {"exposure", settings.exposureUs},
          {"gain", settings.gain.value_or(0)},
          {"offset", settings.offset}};
}

inline oc::Settings settingsFrom(const Json& json) {
  oc::Settings settings;
  settings.bin = json.at("bin");
  settings.format = static_cast<oc::Format>(json.at("format").get<int>());
  settings.exposureUs = json.at("exposure");
  settings.gain = json.at("gain").get<int>();
  settings.offset = json.at("offset");
  return settings;
}

/// A picture to take.
struct ExposeCommand {
  std::uint64_t number = 0;  ///< of the exposure; events about it repeat it
  oc::Settings settings;
  Region region;           ///< of the binned frame
  std::size_t offset = 0;  ///< where its pixels go in the shared memory
};

inline Json jsonOf(const ExposeCommand& command) {
  const Region& region = command.region;
  return {{"do", "expose"},
          {"number", command.number},
          {"settings", jsonOf(command.settings)},
          {"region", {region.left, region.top, region.width, region.height}},
          {"offset", command.offset}};
}

inline ExposeCommand exposeCommandFrom(const Json& json) {
  const Json& region = json.at("region");
  return {json.at("number"),
          settingsFrom(json.at("settings")),
          {region.at(0), region.at(1), region.at(2), region.at(3)},
          json.at("offset")};
}

}  // namespace orvane::host
