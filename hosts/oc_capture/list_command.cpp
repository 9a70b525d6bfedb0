// "oc_capture list": the cameras that are there, and what each can do.
#include <algorithm>
#include <cmath>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "oc_capture/camera_options.hpp"
#include "oc_capture/report.hpp"
#include "session/camera_catalogue.hpp"
#include "system/argument_values.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

struct ListSettings {
  std::string sdkDirectory;
  Reporting reporting;
};

void addOptions(CommandOptions& options, ListSettings& list) {
  addSdkOptions(options, list.sdkDirectory);
  addReportingOptions(options, list.reporting);
}

std::string colour(const oc::CameraInfo& camera) {
  if (!camera.isColor) {
    return "mono";
  }
  return camera.bayer == BayerPattern::None ? "colour" : bayerName(camera.bayer);
}

// "-" when the camera is not USB 3 or the SDK does not tell.
std::string usb(const oc::CameraInfo& camera) {
  if (!camera.isUsb3Camera) {
    return "-";
  }
  return camera.isUsb3Host ? "3" : "3 on 2";
}

std::string orDash(const std::string& text) {
  return text.empty() ? "-" : text;
}

TableRow rowOf(const oc::CameraInfo& camera) {
  const std::string gains =
      std::to_string(camera.minGain) + " to " + std::to_string(camera.maxGain);
  return {std::to_string(camera.index),
          camera.name,
          dimensionsText(camera.maxWidth, camera.maxHeight),
          std::to_string(camera.bitDepth),
          std::isnan(camera.pixelSizeUm) ? "-" : decimal(camera.pixelSizeUm) + " um",
          colour(camera),
          camera.isCooled ? "yes" : "no",
          usb(camera),
          orDash(joined(camera.bins, ",", [](int bin) { return std::to_string(bin); })),
          orDash(joined(camera.formats, ",", formatName)),
          hasGainRange(camera) ? gains : "-",
          hasLongestExposure(camera) ? durationText(camera.maxExposureUs) : "-"};
}

std::string cameraTable(const std::vector<oc::CameraInfo>& cameras) {
  std::vector<TableRow> rows{{"Index", "Name", "Sensor", "Bits", "Pixel", "Colour", "Cooled", "USB",
                              "Bins", "Formats", "Gain", "Longest exposure"}};
  std::transform(cameras.begin(), cameras.end(), std::back_inserter(rows), rowOf);
  return textTable(rows, rows.front().size());
}

Json jsonOf(const oc::Scan& catalogue) {
  Json document{
      {"libraries", catalogue.libraries}, {"error", catalogue.error}, {"cameras", Json::array()}};
  for (const oc::CameraInfo& camera : catalogue.cameras) {
    document["cameras"].push_back(descriptionOf(camera));
  }
  return document;
}

std::string textOf(const oc::Scan& catalogue) {
  const std::string libraries = joined(catalogue.libraries, ", ");
  return "Libraries: " + (libraries.empty() ? "none" : libraries) + "\n" +
         (catalogue.cameras.empty() ? "No cameras.\n" : cameraTable(catalogue.cameras));
}

int listCameras(const ListSettings& settings) {
  const oc::Scan catalogue = readCatalogue(settings.sdkDirectory);
  report(settings.reporting, jsonOf(catalogue), textOf(catalogue));
  if (!std::cout) {
    throw std::runtime_error("The list could not be written.");
  }
  if (!catalogue.error.empty()) {
    std::cerr << "oc_capture: " << catalogue.error << "\n";
    return 1;
  }
  return 0;
}

}  // namespace

const Command listCommand{
    .name = "list",
    .description = "List the cameras and what they can do",
    .examples =
        R"(  oc_capture list --sdk C:\sdk
  oc_capture list --sdk C:\sdk --json)",
    .prepare = prepareCommand<ListSettings, addOptions, listCameras>,
};

}  // namespace orvane::host
