// "oc_capture list": the cameras that are there, and what each can do; or the models of the
// simulated SDKs.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "oc_capture/camera_options.hpp"
#include "oc_capture/report.hpp"
#include "sdk_check/cures.hpp"
#include "sdk_check/sdk_functions.hpp"
#include "sdk_check/system_loader.hpp"
#include "session/camera_catalogue.hpp"
#include "session/causes.hpp"
#include "system/argument_values.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

struct ListSettings {
  std::string sdkDirectory;
  bool showsModels = false;
  Reporting reporting;
};

void addOptions(CommandOptions& options, ListSettings& list) {
  addSdkOptions(options, list.sdkDirectory);
  options.addFlag("--cabinet", list.showsModels,
                  "The models that simulated SDKs can show, instead\nof the cameras");
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

// The files of SDKs in the directory that the library could not load.
std::vector<std::string> filesNotLoaded(const std::string& sdkDirectory,
                                        const oc::Scan& catalogue) {
  std::vector<std::string> files;
  for (const Sdk& sdk : allSdks()) {
    const std::string file = libraryFileName(sdk.baseName);
    std::error_code ignored;
    if (std::ranges::find(catalogue.libraries, sdk.baseName) == catalogue.libraries.end() &&
        std::filesystem::exists(fullSdkDirectory(sdkDirectory) / file, ignored)) {
      files.push_back(file);
    }
  }
  return files;
}

Json jsonOf(const oc::Scan& catalogue, const std::vector<std::string>& notLoaded) {
  Json document{{"libraries", catalogue.libraries},
                {"notLoaded", notLoaded},
                {"error", catalogue.error},
                {"explanation", explained(catalogue.error)},
                {"cameras", Json::array()}};
  for (const oc::CameraInfo& camera : catalogue.cameras) {
    document["cameras"].push_back(descriptionOf(camera));
  }
  return document;
}

// Empty where other lines tell already what to do.
std::string cureOfNoCamera(const oc::Scan& catalogue, const std::vector<std::string>& notLoaded) {
  if (!catalogue.error.empty() || !notLoaded.empty()) {
    return "";
  }
  if (catalogue.libraries.empty()) {
    return " There is no SDK in this directory. " + cureOfNoSdk();
  }
  return " Check the camera's cable and power, that its maker's driver and SDK are there, and that "
         "no other program uses it.";
}

std::string textOf(const ListSettings& settings, const oc::Scan& catalogue,
                   const std::vector<std::string>& notLoaded) {
  const std::string libraries = joined(catalogue.libraries, ", ");
  const std::string remark = notLoaded.empty()
                                 ? ""
                                 : "Could not be loaded: " + joined(notLoaded, ", ") +
                                       ". To learn why, run: oc_capture doctor --sdk " +
                                       inQuotes(settings.sdkDirectory) + "\n";
  return "Libraries: " + (libraries.empty() ? "none" : libraries) + "\n" + remark +
         (catalogue.cameras.empty() ? "No cameras." + cureOfNoCamera(catalogue, notLoaded) + "\n"
                                    : cameraTable(catalogue.cameras));
}

// A model of a simulated SDK, as the SDK describes it.
struct Model {
  const char* maker;
  std::string name;
  std::string size;
  std::string remarks;
};

// The models of all simulated SDKs in the directory. A maker's own SDK has none.
std::vector<Model> modelsIn(const std::string& sdkDirectory) {
  std::vector<Model> models;
  for (const Sdk& sdk : allSdks()) {
    const LoadResult load =
        loadLibrary(fullSdkDirectory(sdkDirectory) / libraryFileName(sdk.baseName));
    void* const cabinet =
        load.module == nullptr ? nullptr : functionNamed(load.module, "sim_cabinet");
    if (cabinet == nullptr) {
      continue;
    }
    std::istringstream lines(reinterpret_cast<const char* (*)()>(cabinet)());
    Model model{.maker = sdk.maker, .name = {}, .size = {}, .remarks = {}};
    while (std::getline(lines, model.name, '\t') && std::getline(lines, model.size, '\t') &&
           std::getline(lines, model.remarks)) {
      models.push_back(model);
    }
  }
  return models;
}

int listModels(const ListSettings& settings) {
  Json document{{"models", Json::array()}};
  std::vector<TableRow> rows{{"Maker", "Name", "Sensor", "Remarks"}};
  for (const Model& model : modelsIn(settings.sdkDirectory)) {
    document["models"].push_back({{"maker", model.maker},
                                  {"name", model.name},
                                  {"sensor", model.size},
                                  {"remarks", model.remarks}});
    rows.push_back({model.maker, model.name, model.size, model.remarks});
  }
  if (rows.size() == 1) {
    throw std::runtime_error("No simulated SDK is in " + inQuotes(settings.sdkDirectory) + ".");
  }
  report(settings.reporting, document, textTable(rows, rows.front().size()));
  return 0;
}

int listCameras(const ListSettings& settings) {
  if (settings.showsModels) {
    return listModels(settings);
  }
  const oc::Scan catalogue = readCatalogueSafely(settings.sdkDirectory);
  const std::vector<std::string> notLoaded = filesNotLoaded(settings.sdkDirectory, catalogue);
  report(settings.reporting, jsonOf(catalogue, notLoaded), textOf(settings, catalogue, notLoaded));
  if (!std::cout) {
    throw std::runtime_error("The list could not be written.");
  }
  if (!catalogue.error.empty()) {
    reportFailure(catalogue.error);
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
    .whenDone = "cameras listed, even if none",
    .whenFailed = "a maker's scan failed",
    .prepare = prepareCommand<ListSettings, addOptions, listCameras>,
};

}  // namespace orvane::host
