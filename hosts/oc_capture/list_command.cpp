// "oc_capture list": the cameras that are there, and what each can do.
#include "oc_capture/list_command.hpp"

#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "oc_capture/camera_options.hpp"
#include "oc_capture/camera_table.hpp"
#include "session/camera_catalogue.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

struct ListSettings {
  std::string sdkDirectory;
  bool asJson = false;
  bool isQuiet = false;  // nothing but errors and the JSON document
};

void addOptions(CommandOptions& options, ListSettings& list) {
  addSdkOptions(options, list.sdkDirectory);
  options.addFlag("--json", list.asJson, "Write one JSON document");
  options.addFlag("--quiet", list.isQuiet, "Write nothing but errors and the JSON document");
}

void printJson(const CameraCatalogue& catalogue) {
  nlohmann::ordered_json document;
  document["libraries"] = catalogue.libraries;
  document["error"] = catalogue.problems;
  document["cameras"] = catalogue.json;
  std::cout << document.dump(2) << "\n";
}

void printText(const CameraCatalogue& catalogue) {
  const std::string libraries =
      joined(catalogue.libraries, ", ", [](const std::string& name) { return name; });
  std::cout << "Libraries: " << (libraries.empty() ? "none" : libraries) << "\n";
  if (catalogue.cameras.empty()) {
    std::cout << "No cameras.\n";
  } else {
    std::cout << cameraTable(catalogue.cameras);
  }
}

int listCameras(const ListSettings& settings) {
  const CameraCatalogue catalogue = readCatalogue(settings.sdkDirectory);
  if (settings.asJson) {
    printJson(catalogue);
  } else if (!settings.isQuiet) {
    printText(catalogue);
  }
  std::cout.flush();
  if (!std::cout) {
    throw std::runtime_error("The list could not be written.");
  }
  if (!catalogue.problems.empty()) {
    std::cerr << "oc_capture: " << catalogue.problems << "\n";
    return 1;
  }
  return 0;
}

constexpr const char* examples =
    R"(  oc_capture list --sdk C:\sdk
  oc_capture list --sdk C:\sdk --json)";

}  // namespace

const Command listCommand{
    "list",
    "List the cameras and what they can do",
    "",
    examples,
    prepareCommand<ListSettings, addOptions, listCameras>,
};

}  // namespace orvane::host
