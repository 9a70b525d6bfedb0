// "oc_capture list": what cameras there are, and what each can do.
#include "oc_capture/list_command.hpp"

#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "oc_capture/camera_table.hpp"
#include "session/camera_catalogue.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

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

}  // namespace

int listCameras(const ListCommand& command) {
  const CameraCatalogue catalogue = readCatalogue(command.sdkDirectory);
  if (command.asJson) {
    printJson(catalogue);
  } else if (!command.isQuiet) {
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

}  // namespace orvane::host
